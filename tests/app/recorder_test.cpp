#include "base/windows.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "base/gdi_owners.h"
#include "base/system_owners.h"
#include "host/app/app_pipe.h"
#include "host/app/recorder_setup.h"
#include "host/printer/printer_setup.h"
#include "support/built_file.h"
#include "support/corpus.h"

// The recorder in a printing program: this one, which is its own print host.
namespace quillo::test {
namespace {

namespace fs = std::filesystem;

/// Answers all requests, on a thread of its own.
class PrintHost {
 public:
  PrintHost() : pipe_([](DWORD process) { return process == GetCurrentProcessId(); }) {
    SetEnvironmentVariableW(app::kPipeVariable, pipe_.Name().c_str());
    thread_ = std::thread([this] {
      while (!stop_) {
        if (pipe_.Wait(10) == host::AppPipe::Event::kRequest) Answer(pipe_.Last());
      }
    });
  }
  ~PrintHost() {
    stop_ = true;
    thread_.join();
    SetEnvironmentVariableW(app::kPipeVariable, nullptr);
    fs::remove(file_);
  }

  std::string requests;                       // their kinds: C E S P D A
  std::vector<std::vector<std::byte>> pages;  // metafiles

 private:
  void Answer(const app::Request& request) {
    requests += " CESPDA?"[static_cast<size_t>(request.header.kind)];
    switch (request.header.kind) {
      case app::RequestKind::kCapabilities: {
        constexpr app::Capabilities kSheet = {100, 200, 1000, 2000, 1010, 2010, 5,   6, 254,
                                              254, 24,  1,    -1,   100,  100,  141, 0};
        return pipe_.Answer(1, std::as_bytes(std::span(&kSheet, 1)));
      }
      case app::RequestKind::kStartDocument:
        return pipe_.Answer(1, std::as_bytes(std::span(file_.native())));
      case app::RequestKind::kPage:
        pages.push_back(ReadFile(file_));
        break;
      default:
        break;
    }
    pipe_.Answer(1);
  }

  const fs::path file_ = fs::temp_directory_path() / L"recorded.emf";
  host::AppPipe pipe_;
  std::atomic<bool> stop_ = false;
  std::thread thread_;
};

class Recorder : public testing::Test {
 protected:
  Recorder() {
    // GDI asks for it by its name alone, and shall not find one of an earlier build.
    static const Library kBuilt(LoadLibraryW(BuiltFile(L"quillo-app.drv").c_str()));
    host::EnsurePrinter(host::kPrinterName, 254, {});
    host::InstallRecorder(fs::path(BuiltFile(L"quillo-app.drv")).parent_path());
    host_.emplace();
    dc_.Reset(CreateDCW(nullptr, host::kPrinterName, nullptr, nullptr));
  }

  /// A metafile's records without its header, the bounds of text and what GDI leaves after the
  /// description of a font.
  static std::vector<std::string> Records(const std::vector<std::byte>& metafile) {
    std::vector<std::string> records;
    for (size_t at = LoadOrZero<uint32_t>(metafile, 4); at < metafile.size();) {
      const auto size = LoadOrZero<uint32_t>(metafile, at + 4);
      if (size == 0 || size > metafile.size() - at) break;
      std::string& record =
          records.emplace_back(reinterpret_cast<const char*>(metafile.data()) + at, size);
      const auto type = LoadOrZero<uint32_t>(metafile, at);
      if (type == EMR_EXTTEXTOUTW) record.replace(8, sizeof(RECTL), sizeof(RECTL), ' ');
      if (type == EMR_EXTCREATEFONTINDIRECTW) record.resize(12 + sizeof(LOGFONTW));
      at += size;
    }
    return records;
  }
  /// The records of these calls on a metafile DC of the printer.
  std::vector<std::string> Plain(void (*draw)(HDC)) const {
    MetafileDc dc(CreateEnhMetaFileW(dc_.Get(), nullptr, nullptr, nullptr));
    draw(dc.Get());
    const EnhMetafile metafile = dc.Close();
    std::vector<std::byte> bytes(GetEnhMetaFileBits(metafile.Get(), 0, nullptr));
    GetEnhMetaFileBits(metafile.Get(), static_cast<UINT>(bytes.size()),
                       reinterpret_cast<BYTE*>(bytes.data()));
    std::vector<std::string> records = Records(bytes);
    // Closing a DC restores its first state, where it has saved any; a page that ends does not.
    if (const size_t last = records.size() - 2;
        records.size() > 1 && records[last][0] == EMR_RESTOREDC) {
      records.erase(records.begin() + static_cast<ptrdiff_t>(last));
    }
    return records;
  }
  void BeginDocument() const {
    DOCINFOW document{};
    document.cbSize = sizeof document;
    document.lpszDocName = L"x";
    ASSERT_EQ(StartDocW(dc_.Get(), &document), 1);
  }

  /// The records of a document's only page.
  std::vector<std::string> PageOf(void (*draw)(HDC)) const {
    BeginDocument();
    StartPage(dc_.Get());
    draw(dc_.Get());
    EndPage(dc_.Get());
    EndDoc(dc_.Get());
    return Records(host_->pages.at(0));
  }
  template <typename Array>
  static std::string BytesOf(const Array& array) {
    return {reinterpret_cast<const char*>(array), sizeof array};
  }

  std::optional<PrintHost> host_;
  CreatedDc dc_;
};

constexpr WORD kGlyphs[] = {40, 41, 90};
constexpr INT kPairs[] = {10, 1, 20, -2, 30, 0};
HGDIOBJ g_pen, g_font;

void GlyphText(HDC dc, UINT options, const INT* advances) {
  SelectObject(dc, g_font);
  ExtTextOutW(dc, 1, 2, ETO_GLYPH_INDEX | options, nullptr, reinterpret_cast<LPCWSTR>(kGlyphs), 3,
              advances);
}
void GlyphTextWithAdvances(HDC dc) {
  const CreatedDc other(CreateDCW(nullptr, host::kPrinterName, nullptr, nullptr));
  const SelectScope font(other.Get(), g_font);
  INT ends[3];
  SIZE size;
  GetTextExtentExPointI(other.Get(), const_cast<WORD*>(kGlyphs), 3, 0, nullptr, ends, &size);
  const INT advances[] = {ends[0], ends[1] - ends[0], ends[2] - ends[1]};
  GlyphText(dc, 0, advances);
}

void Draw(HDC dc) {
  SelectObject(dc, g_font);
  TextOutW(dc, 10, 20, L"text", 4);
  SelectObject(dc, g_pen);
  LineTo(dc, 300, 400);
}

constexpr struct {
  const char* name;
  void (*first)(HDC), (*second)(HDC);  // pages
  void (*expected_first)(HDC), (*expected_second)(HDC);
} kPages[] = {
    {"nothing carried", Draw, Draw, Draw,
     [](HDC dc) {
       SelectObject(dc, g_pen);
       SelectObject(dc, g_font);
       MoveToEx(dc, 300, 400, nullptr);
       Draw(dc);
     }},
    {"state",
     [](HDC dc) {
       SetTextColor(dc, 0x123456);
       SetMapMode(dc, MM_ANISOTROPIC);
       SetWindowExtEx(dc, 2, 2, nullptr);
       SetViewportExtEx(dc, 3, 3, nullptr);
       SetWindowOrgEx(dc, 4, 4, nullptr);
       SelectObject(dc, g_font);
       IntersectClipRect(dc, 5, 6, 70, 80);
       SetROP2(dc, R2_NOT);
     },
     [](HDC dc) { Rectangle(dc, 1, 2, 3, 4); }, nullptr,
     [](HDC dc) {
       SetMapMode(dc, MM_ANISOTROPIC);
       SetTextColor(dc, 0x123456);
       SetROP2(dc, R2_NOT);
       SetWindowExtEx(dc, 2, 2, nullptr);
       SetViewportExtEx(dc, 3, 3, nullptr);
       SetWindowOrgEx(dc, 4, 4, nullptr);
       const Region clip(CreateRectRgn(2, 3, 99, 114));
       ExtSelectClipRgn(dc, clip.Get(), RGN_COPY);
       SelectObject(dc, g_font);
       Rectangle(dc, 1, 2, 3, 4);
     }},
    {"saved states",
     [](HDC dc) {
       SetTextColor(dc, 1);
       SaveDC(dc);
       SetTextColor(dc, 2);
       SaveDC(dc);
       SetTextColor(dc, 0);
     },
     [](HDC dc) {
       RestoreDC(dc, -1);
       SetTextColor(dc, GetTextColor(dc) + 7);
       RestoreDC(dc, 1);
       SetTextColor(dc, GetTextColor(dc) + 7);
     },
     nullptr,
     [](HDC dc) {
       for (const COLORREF colour : {1, 2, 0}) {
         if (colour != 1) SaveDC(dc);
         SetTextColor(dc, colour);
       }
       RestoreDC(dc, -1);
       SetTextColor(dc, 9);
       RestoreDC(dc, 1);
       SetTextColor(dc, 8);
     }},
    {"glyph numbers without advances", [](HDC dc) { GlyphText(dc, 0, nullptr); },
     [](HDC dc) { GlyphText(dc, 0, nullptr); }, GlyphTextWithAdvances,
     [](HDC dc) {
       SelectObject(dc, g_font);
       GlyphTextWithAdvances(dc);
     }},
};

TEST_F(Recorder, Pages_HoldTheRecordsOfTheirCallsAndTheStateOfThePageBefore) {
  const Pen pen(CreatePen(PS_SOLID, 3, 0xFF));
  const Font font(CreateFontW(-50, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, L"Liberation Sans"));
  g_pen = pen.Get();
  g_font = font.Get();
  for (const auto& c : kPages) {
    SCOPED_TRACE(c.name);
    host_->pages.clear();
    dc_.Reset(CreateDCW(nullptr, host::kPrinterName, nullptr, nullptr));
    BeginDocument();
    for (const auto draw : {c.first, c.second}) {
      StartPage(dc_.Get());
      draw(dc_.Get());
      EXPECT_EQ(EndPage(dc_.Get()), 1);
    }
    EXPECT_EQ(EndDoc(dc_.Get()), 1);
    ASSERT_EQ(host_->pages.size(), 2u);
    EXPECT_EQ(Records(host_->pages[0]), Plain(c.expected_first ? c.expected_first : c.first));
    EXPECT_EQ(Records(host_->pages[1]), Plain(c.expected_second));
  }
}

TEST_F(Recorder, AdvancesInBothDirections_AreRecordedWhole) {
  const Font font(CreateFontW(-50, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, L"Liberation Sans"));
  g_font = font.Get();
  const auto draw = [](HDC dc) { GlyphText(dc, ETO_PDY, kPairs); };
  const auto advances = [](const std::vector<std::string>& records) {
    return records.at(records.size() - 2).substr(sizeof(EMREXTTEXTOUTW) + 8);
  };
  EXPECT_EQ(advances(PageOf(draw)), BytesOf(kPairs));
  // GDI by itself records the first half; without this gap there is nothing to mend.
  EXPECT_EQ(advances(Plain(draw)).size(), sizeof kPairs / 2);
}

TEST_F(Recorder, ExtendedPens_AreRecordedWithTheirDashes) {
  constexpr DWORD kDashes[] = {7, 8, 9};
  constexpr LOGBRUSH kBrush = {BS_HATCHED, 0x123456, HS_CROSS};
  const Pen pen(ExtCreatePen(PS_GEOMETRIC | PS_USERSTYLE | PS_ENDCAP_FLAT, 5, &kBrush, 3, kDashes));
  g_pen = pen.Get();
  const std::vector<std::string> records = PageOf([](HDC dc) { SelectObject(dc, g_pen); });
  constexpr DWORD kRecord[] = {EMR_EXTCREATEPEN, 64,       1,        0, 0, 0, 0, 0x10207, 5,
                               BS_HATCHED,       0x123456, HS_CROSS, 3, 7, 8, 9};
  EXPECT_EQ(records.at(0), BytesOf(kRecord));
  EXPECT_EQ(records.at(1)[0], EMR_SELECTOBJECT);
  EXPECT_EQ(records.size(), 3u);
}

/// Calls by their letters, and what they answer: d for StartDoc, s StartPage, e EndPage, E EndDoc,
/// a AbortDoc, r ResetDC, x an escape, D DeleteDC.
TEST_F(Recorder, Calls_ReachTheHostInTheirOrder) {
  constexpr struct {
    const char *calls, *answers, *requests;
  } kCases[] = {
      {"dseseE", "++++++", "CSPPD"},   {"deeE", "++++", "CSPPD"},  // programs of old start no pages
      {"dseeE", "+++-+", "CSPD"},                                  // but those that do, do
      {"dsE", "+++", "CSPD"},           // an open page ends with its document
      {"dsrerse", "++-++++", "CSPCP"},  // no other sheet inside a page
      {"sedda", "--+-+", "CSA"},        // one document at a time
      {"dsD", "+++", "CSA"},            // nobody else would end it
      {"xdEdaE", "+++++-", "CESDSA"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.calls);
    dc_.Reset();
    host_->requests.clear();
    dc_.Reset(CreateDCW(nullptr, host::kPrinterName, nullptr, nullptr));
    const HDC dc = dc_.Get();
    DOCINFOW document{};
    document.cbSize = sizeof document;
    std::string answers;
    for (const char* call = c.calls; *call != '\0'; ++call) {
      const auto done = [&]() -> bool {
        switch (*call) {
          case 'd':
            return StartDocW(dc, &document) > 0;
          case 's':
            return StartPage(dc) > 0;
          case 'e':
            return EndPage(dc) > 0;
          case 'E':
            return EndDoc(dc) > 0;
          case 'a':
            return AbortDoc(dc) > 0;
          case 'r':
            return ResetDCW(dc, nullptr) != nullptr;
          case 'x':
            return ExtEscape(dc, GETTECHNOLOGY, 0, nullptr, 0, nullptr) > 0;
          default:
            return DeleteDC(dc_.Detach());
        }
      };
      answers += done() ? '+' : '-';
    }
    EXPECT_EQ(answers, c.answers);
    EXPECT_EQ(host_->requests, c.requests);
  }
}

}  // namespace
}  // namespace quillo::test
