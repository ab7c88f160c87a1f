// The C library's functions for wide text, for a wchar_t of 16 bits: the native ones take 32.
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

static_assert(sizeof(wchar_t) == 2);

namespace {

wchar_t Lower(wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + 32) : c; }

int Compare(const wchar_t* a, const wchar_t* b, size_t size) {
  for (size_t i = 0; i < size; ++i) {
    if (Lower(a[i]) != Lower(b[i])) return Lower(a[i]) - Lower(b[i]);
    if (a[i] == 0) break;
  }
  return 0;
}

}  // namespace

extern "C" {

size_t wcslen(const wchar_t* text) {
  size_t length = 0;
  while (text[length] != 0) ++length;
  return length;
}
wchar_t* wmemcpy(wchar_t* to, const wchar_t* from, size_t size) {
  return static_cast<wchar_t*>(memcpy(to, from, size * sizeof *to));
}
wchar_t* wmemmove(wchar_t* to, const wchar_t* from, size_t size) {
  return static_cast<wchar_t*>(memmove(to, from, size * sizeof *to));
}
wchar_t* wmemset(wchar_t* to, wchar_t unit, size_t size) {
  for (size_t i = 0; i < size; ++i) to[i] = unit;
  return to;
}
int wmemcmp(const wchar_t* a, const wchar_t* b, size_t size) {
  for (size_t i = 0; i < size; ++i) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  return 0;
}
wchar_t* wmemchr(const wchar_t* text, wchar_t unit, size_t size) {
  for (size_t i = 0; i < size; ++i) {
    if (text[i] == unit) return const_cast<wchar_t*>(text + i);
  }
  return nullptr;
}
wchar_t* wcschr(const wchar_t* text, wchar_t unit) { return wmemchr(text, unit, wcslen(text) + 1); }
size_t wcscspn(const wchar_t* text, const wchar_t* units) {
  size_t length = 0;
  while (text[length] != 0 && wcschr(units, text[length]) == nullptr) ++length;
  return length;
}
wchar_t* wcsstr(const wchar_t* text, const wchar_t* part) {
  const size_t length = wcslen(part);
  for (; wcslen(text) >= length; ++text) {
    if (wmemcmp(text, part, length) == 0) return const_cast<wchar_t*>(text);
    if (*text == 0) break;
  }
  return nullptr;
}
unsigned long wcstoul(const wchar_t* text, wchar_t** end, int base) {
  std::string narrow;
  for (const wchar_t* c = text; *c != 0; ++c) narrow += *c < 128 ? static_cast<char>(*c) : '?';
  char* stop = nullptr;
  const unsigned long number = strtoul(narrow.c_str(), &stop, base);
  if (end != nullptr) *end = const_cast<wchar_t*>(text) + (stop - narrow.c_str());
  // A long has 32 bits on Windows.
  return number > 0xFFFFFFFF ? 0xFFFFFFFF : number;
}
int _wcsicmp(const wchar_t* a, const wchar_t* b) { return Compare(a, b, SIZE_MAX); }
int _wcsnicmp(const wchar_t* a, const wchar_t* b, size_t size) { return Compare(a, b, size); }

}  // extern "C"
