#include "importhook.h"

#include <cstring>
#include <stdexcept>
#include <string>

namespace test {
namespace {

template <typename T>
const T* At(const char* base, DWORD offset) {
  return reinterpret_cast<const T*>(base + offset);
}

/// Calls `visit` with the DLL, the name and the slot of each import that has a name, until it returns false.
template <typename Visit>
void VisitImports(HMODULE module, Visit visit) {
  const char* const base = reinterpret_cast<const char*>(module);
  const auto* const headers = At<IMAGE_NT_HEADERS>(base, static_cast<DWORD>(At<IMAGE_DOS_HEADER>(base, 0)->e_lfanew));
  const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  if (directory.VirtualAddress == 0) return;
  for (const auto* dll = At<IMAGE_IMPORT_DESCRIPTOR>(base, directory.VirtualAddress); dll->Name != 0; ++dll) {
    const auto* name = At<IMAGE_THUNK_DATA>(base, dll->OriginalFirstThunk);
    const auto* slot = At<IMAGE_THUNK_DATA>(base, dll->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++slot) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
      const auto* const imported = At<IMAGE_IMPORT_BY_NAME>(base, static_cast<DWORD>(name->u1.AddressOfData));
      if (!visit(At<char>(base, dll->Name), reinterpret_cast<const char*>(imported->Name),
                 reinterpret_cast<void**>(const_cast<IMAGE_THUNK_DATA*>(slot)))) {
        return;
      }
    }
  }
}

}  // namespace

void** ImportSlot(HMODULE module, const char* function) {
  if (module == nullptr) throw std::runtime_error("there is no such module to import " + std::string(function));
  void** found = nullptr;
  VisitImports(module, [&](const char*, const char* name, void** slot) {
    if (std::strcmp(name, function) == 0) found = slot;
    return found == nullptr;
  });
  if (found == nullptr) throw std::runtime_error("the module does not import " + std::string(function));
  return found;
}

std::vector<std::string> ImportedFunctions(HMODULE module, const char* dll) {
  std::vector<std::string> functions;
  VisitImports(module, [&](const char* from, const char* name, void**) {
    if (lstrcmpiA(from, dll) == 0) functions.emplace_back(name);
    return true;
  });
  return functions;
}

void* ReplaceSlot(void** slot, void* value) {
  DWORD protection = 0;
  if (!VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection)) {
    throw std::runtime_error("the import slot cannot be written");
  }
  void* const former = std::exchange(*slot, value);
  VirtualProtect(slot, sizeof(*slot), protection, &protection);
  return former;
}

}  // namespace test
