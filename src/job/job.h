#pragma once

#include "base/windows.h"

#include <cstdint>

#include "base/com_owners.h"
#include "base/system_owners.h"
#include "interface/quillo.h"
#include "job/buffer.h"
#include "playback/context.h"

namespace quillo {

inline constexpr uint32_t kJobSignature = 0x44525347;  // the bytes "GSRD"

enum JobState : uint32_t {
  kJobValid = 0x1,
  kDocumentEnded = 0x2,  // for whoever debugs a job: nothing reads it
  kPageFilePending = 0x8,
  kClientNotConnected = 0x10,
  kJobFailed = 0x10000000,  // no further page begins
};

struct CQloPrinter;

/// Takes what playback reports to its job.
class JobEvents final : public PlaybackEvents {
 public:
  explicit JobEvents(CQloPrinter& job) : job_(job) {}
  void JobFailed() override;
  HRESULT FontEmbedded(const wchar_t* path) override;

 private:
  CQloPrinter& job_;
};

/// One print job, from DrvStartDoc to DrvEndDoc: the record sink, the playback context
/// and the connection to the client. Lives on its own private heap; destroying the heap ends it.
/// Used on the engine's thread only.
struct CQloPrinter {
  CQloPrinter(HANDLE private_heap, HANDLE job_printer, DWORD id);

  uint32_t signature = kJobSignature;
  HANDLE printer;
  uint32_t job_id;
  uint32_t state = kJobValid;  // JobState
  uint32_t record_count = 0;   // writes into the sink; this and the next two are for debugging
  uint32_t pages_started = 0;
  uint32_t pages_sent = 0;
  DeviceMode* device_settings = nullptr;  // on the private heap; overwritten by each REC_DEVMODE
  PlaybackContext playback;               // with the two font tables: seen fonts and run list
  Bstr printer_name;
  Bstr document_name;
  ComPtr<IQuilloClient> client;  // empty = none
  HRESULT com_result = E_FAIL;   // of the job's CoInitializeEx
  HANDLE heap;
  CBuffer record_buffer;
  uint64_t lost_bytes = 0;             // still to come of a record that memory was too short for
  wchar_t font_folder[MAX_PATH] = {};  // where embedded fonts go; empty = nowhere
  wchar_t page_path[MAX_PATH] = {};    // file of the current page; empty = none
  ComPtr<IQuilloPage> page_object;     // the client's, for the current page
  Library resources;                   // QXRES06X.dll; empty when absent
  JobEvents events{*this};             // of playback
};

/// Opens the job of a document. Null when memory is short; then nothing stays allocated.
CQloPrinter* OpenJob(HANDLE printer, DWORD job_id);

/// Begins a page. False for a null, foreign, invalid or failed job, when the client cannot be
/// reached at the retry, and when the page metafile cannot be created; with a last error.
bool StartPage(CQloPrinter* job);

/// Empties the record buffer, finishes the page and delivers it. True when the metafile was
/// closed, else false with a last error.
bool SendPage(CQloPrinter* job);

/// Sets the job-end event, closes an open page and destroys the job.
void SignalEndAndDestroy(CQloPrinter* job);

}  // namespace quillo
