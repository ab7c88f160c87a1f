#include "base/windows.h"

#include <cstdlib>
#include <objidl.h>
#include <string>
#include <string_view>
// It needs what comes before it.
#include <gdiplus.h>

// A program that prints on the default printer, one way or another: its argument says which.
namespace {

constexpr wchar_t kPrinter[] = L"VORNIX Quillo 6";

/// A device mode for a sheet, of no driver in particular.
DEVMODEW Sheet(short paper, short orientation) {
  DEVMODEW mode = {};
  mode.dmSize = sizeof mode;
  mode.dmFields = DM_PAPERSIZE | DM_ORIENTATION | DM_COPIES | DM_COLLATE;
  mode.dmPaperSize = paper;
  mode.dmOrientation = orientation;
  mode.dmCopies = 3;
  mode.dmCollate = DMCOLLATE_TRUE;
  return mode;
}

HDC MakeDc(const DEVMODEW* mode = nullptr) { return CreateDCW(nullptr, kPrinter, nullptr, mode); }

void Start(HDC dc, const wchar_t* name) {
  DOCINFOW document = {};
  document.cbSize = sizeof document;
  document.lpszDocName = name;
  if (StartDocW(dc, &document) <= 0) ExitProcess(100);
}

/// Prints a page that shows a text and a square of 100 pixels in the current state.
void Page(HDC dc, std::wstring_view text) {
  StartPage(dc);
  TextOutW(dc, 50, 50, text.data(), static_cast<int>(text.size()));
  Rectangle(dc, 100, 100, 200, 200);
  if (EndPage(dc) <= 0) ExitProcess(101);
}

/// Half-transparent red, of an object that GDI has no call for.
void BlendRed(HDC dc) {
  Gdiplus::GdiplusStartupInput input;
  ULONG_PTR token = 0;
  Gdiplus::GdiplusStartup(&token, &input, nullptr);
  {
    Gdiplus::Graphics graphics(dc);
    graphics.SetPageUnit(Gdiplus::UnitPixel);
    const Gdiplus::SolidBrush brush(Gdiplus::Color(0x66, 0xFF, 0, 0));
    graphics.FillEllipse(&brush, 300, 300, 100, 100);
  }
  Gdiplus::GdiplusShutdown(token);
}

/// A bitmap that has the printer's colours.
void CopyGreen(HDC dc) {
  const HDC memory = CreateCompatibleDC(dc);
  const HBITMAP bitmap = CreateCompatibleBitmap(dc, 50, 50);
  const HGDIOBJ former = SelectObject(memory, bitmap);
  const HBRUSH brush = CreateSolidBrush(RGB(0, 0xFF, 0));
  const RECT all = {0, 0, 50, 50};
  FillRect(memory, &all, brush);
  DeleteObject(brush);
  BitBlt(dc, 500, 300, 50, 50, memory, 0, 0, SRCCOPY);
  SelectObject(memory, former);
  DeleteObject(bitmap);
  DeleteDC(memory);
}

/// Two documents: state that goes on to the next page, a sheet that changes, blended colours.
void PrintDocuments() {
  const DEVMODEW first = Sheet(DMPAPER_A4, DMORIENT_PORTRAIT);
  const DEVMODEW second = Sheet(DMPAPER_A5, DMORIENT_LANDSCAPE);
  const HDC dc = MakeDc(&first);
  SelectObject(dc, GetStockObject(DC_BRUSH));
  SetDCBrushColor(dc, RGB(0, 0, 0xFF));
  Start(dc, L"Two sheets");
  Page(dc, L"first page");
  IntersectClipRect(dc, 0, 0, 150, 1000);
  SetDCBrushColor(dc, RGB(0, 0xFF, 0));
  ResetDCW(dc, &second);
  Page(dc, L"second page");
  SelectClipRgn(dc, nullptr);
  StartPage(dc);
  BlendRed(dc);
  CopyGreen(dc);
  EndPage(dc);
  EndDoc(dc);
  Start(dc, L"Another");
  Page(dc, L"of the other");
  EndDoc(dc);
  DeleteDC(dc);
}

void SendRubbish() {
  wchar_t name[256] = {};
  GetEnvironmentVariableW(L"QUILLO_APP_PIPE", name, 256);
  const HANDLE pipe = CreateFileW(name, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  DWORD written = 0;
  WriteFile(pipe, "rubbish", 7, &written, nullptr);
  Sleep(INFINITE);
}

/// Asks the printer's driver as another version of Wine would.
void AskAsOtherWine() {
  const HMODULE driver = GetModuleHandleW(L"quillo-app.drv");
  using Function = const void*(unsigned);
  auto* ask = reinterpret_cast<Function*>(
      reinterpret_cast<void*>(GetProcAddress(driver, "wine_get_gdi_driver")));
  if (ask(80) == nullptr) Sleep(INFINITE);
}

/// Leaves another process of this program that hangs.
void LeaveChild() {
  wchar_t program[MAX_PATH];
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  wchar_t command[] = L"child hang";
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION info = {};
  CreateProcessW(program, command, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info);
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  const std::wstring_view how = count > 1 ? arguments[1] : L"";
  if (how == L"dialog") MessageBoxW(nullptr, L"May it print?", L"A question", MB_OK);
  if (how == L"rubbish") {
    LeaveChild();
    SendRubbish();
  }
  if (how == L"hang") Sleep(INFINITE);
  if (how == L"nothing") return 0;
  if (how == L"documents") {
    PrintDocuments();
    return 0;
  }
  const HDC dc = MakeDc();
  if (how == L"wine") {
    DeleteDC(dc);
    AskAsOtherWine();
  }
  Start(dc, L"A document");
  const int pages = count > 2 ? _wtoi(arguments[2]) : 1;
  for (int page = 1; page <= pages; ++page) Page(dc, L"page " + std::to_wstring(page));
  if (how == L"abort") AbortDoc(dc);
  if (how == L"exit") ExitProcess(0);
  if (how == L"crash") RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
  if (how == L"silent") Sleep(INFINITE);
  EndDoc(dc);
  DeleteDC(dc);
  return 0;
}
