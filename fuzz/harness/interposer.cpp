#include "fuzz/harness/interposer.h"

#include <algorithm>
#include <cstring>
#include <map>

// Called in place of an import, whose Import is in r11: asks which function the call goes to and
// jumps there, with the arguments as they came.
asm(R"(
  .text
harness_gate:
  pushq %rcx
  pushq %rdx
  pushq %r8
  pushq %r9
  subq $104, %rsp
  movups %xmm0, 32(%rsp)
  movups %xmm1, 48(%rsp)
  movups %xmm2, 64(%rsp)
  movups %xmm3, 80(%rsp)
  movq %r11, %rcx
  call harness_choose
  movups 32(%rsp), %xmm0
  movups 48(%rsp), %xmm1
  movups 64(%rsp), %xmm2
  movups 80(%rsp), %xmm3
  addq $104, %rsp
  popq %r9
  popq %r8
  popq %rdx
  popq %rcx
  jmp *%rax
)");
extern "C" void harness_gate();

namespace quillo::harness {

Interposer interposer;

/// Other threads of the process, COM's, are left alone.
AnyFunction ChooseFunction(Import* import) {
  static const DWORD engine_thread = GetCurrentThreadId();
  Interposer& all = interposer;
  if (import->failure == nullptr || GetCurrentThreadId() != engine_thread) return import->function;
  ++import->calls;
  const bool fails =
      import == all.failing_ &&
      (import->calls == all.failing_call_ || (all.and_later_ && import->calls > all.failing_call_));
  if (!fails) return import->function;
  if (all.failures_++ == 0) all.phase_of_failure = all.phase;
  released_by = import->function;
  return import->failure;
}
extern "C" AnyFunction harness_choose(Import* import) { return ChooseFunction(import); }

void* Interposer::GateTo(const std::string& library, const std::string& name, void* function) {
  static std::map<std::string, uint8_t*> gates;
  static std::map<std::string, Import*> known;
  const auto target = reinterpret_cast<AnyFunction>(function);
  if (const auto found = known.find(name); found != known.end()) {
    found->second->function = target;
    return gates[name];
  }
  Import* import = &imports.emplace_back(Import{name, target, FailureOf(library, name)});
  known[name] = import;
  // movabs $import, %r11; movabs $harness_gate, %rax; jmp *%rax
  auto* code = static_cast<uint8_t*>(
      VirtualAlloc(nullptr, 64, MEM_RESERVE | MEM_COMMIT, PAGE_EXECUTE_READWRITE));
  const auto* gate = reinterpret_cast<const void*>(&harness_gate);
  std::memcpy(code, "\x49\xBB", 2);
  std::memcpy(code + 2, &import, 8);
  std::memcpy(code + 10, "\x48\xB8", 2);
  std::memcpy(code + 12, &gate, 8);
  std::memcpy(code + 20, "\xFF\xE0", 2);
  return gates[name] = code;
}

FARPROC WINAPI Interposer::FindLate(HMODULE module, const char* name) {
  const FARPROC found = GetProcAddress(module, name);
  if (found == nullptr) return nullptr;
  return reinterpret_cast<FARPROC>(interposer.GateTo("", name, reinterpret_cast<void*>(found)));
}

void Interposer::TakeOver(HMODULE module) {
  auto* base = reinterpret_cast<std::byte*>(module);
  const auto at = [base](DWORD offset) { return base + offset; };
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* headers =
      reinterpret_cast<const IMAGE_NT_HEADERS64*>(at(static_cast<DWORD>(dos->e_lfanew)));
  const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  const auto* library =
      reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(at(directory.VirtualAddress));
  for (; library->Name != 0; ++library) {
    const auto* names =
        reinterpret_cast<const IMAGE_THUNK_DATA64*>(at(library->OriginalFirstThunk));
    auto** entries = reinterpret_cast<void**>(at(library->FirstThunk));
    for (; names->u1.AddressOfData != 0; ++names, ++entries) {
      const auto* import = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(
          at(static_cast<DWORD>(names->u1.AddressOfData)));
      DWORD protection = 0;
      VirtualProtect(entries, sizeof *entries, PAGE_READWRITE, &protection);
      *entries = GateTo(reinterpret_cast<const char*>(at(library->Name)),
                        reinterpret_cast<const char*>(import->Name), *entries);
      VirtualProtect(entries, sizeof *entries, protection, &protection);
    }
  }
  Replace("GetProcAddress", &FindLate);
}

void Interposer::Replace(std::string_view name, AnyFunction function) {
  const auto import = std::ranges::find(imports, name, &Import::name);
  if (import != imports.end()) import->function = function;
}

void Interposer::Arm(const Import* import, uint32_t call, bool and_later) {
  for (Import& each : imports) each.calls = 0;
  failing_ = import;
  failing_call_ = call;
  and_later_ = and_later;
  failures_ = 0;
}

}  // namespace quillo::harness
