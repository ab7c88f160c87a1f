#include "support/capture_fixture.h"

#include "capture/records/framing.h"
#include "capture/records/types.h"
#include "job/record_sink.h"
#include "support/record_dump.h"

namespace quillo::test {
namespace {

// The header of a record that never ends: the sink takes all that follows for its payload.
constexpr records::RecordHeader kEndless = {records::REC_RAWDATA, 0xFFFFFFFF};

}  // namespace

CaptureTest::CaptureTest() : DriverJob({200, 100}, {600, 300}) {
  device_.remembered_colour = 0xFFFFFF;
  surface_.iType = STYPE_BITMAP;
  SwallowStream();
}

void CaptureTest::SwallowStream() { WriteJob(&job_, &kEndless, sizeof kEndless, nullptr); }

std::string CaptureTest::TakeRecords() {
  std::string text = DumpRecords(job_.record_buffer.Unread().subspan(sizeof kEndless));
  job_.record_buffer.Reset();
  SwallowStream();
  return text;
}

std::string CaptureTest::TakeDrawing() {
  static constexpr std::string_view kOpening = "RESETWORLDTRANSFORM\nSAVEDC\n";
  static constexpr std::string_view kClosing = "RESTOREDC\n";
  std::string text = TakeRecords();
  EXPECT_TRUE(text.starts_with(kOpening) && text.ends_with(kClosing)) << text;
  if (text.size() < kOpening.size() + kClosing.size()) return text;
  return text.substr(kOpening.size(), text.size() - kOpening.size() - kClosing.size());
}

}  // namespace quillo::test
