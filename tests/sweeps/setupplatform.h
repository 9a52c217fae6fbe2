/// @file
/// The Setup API, as driverinfo.dll calls it.
#pragma once

#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <string>

#include "faults.h"
#include "freshlibrary.h"
#include "importhook.h"

namespace sweeps {

struct SetupPlatform {
  explicit SetupPlatform(Faults& numbered) : faults(numbered) {}
  SetupPlatform(const SetupPlatform&) = delete;
  SetupPlatform& operator=(const SetupPlatform&) = delete;

  Faults& faults;

  HOOK(open, Library(), SetupOpenInfFileA, [this](const char* path, const char* name, DWORD style, UINT* line) -> HINF {
    if (faults.Hits("SetupOpenInfFileA", path, {ERROR_FILE_NOT_FOUND, static_cast<DWORD>(ERROR_GENERAL_SYNTAX)})) {
      return INVALID_HANDLE_VALUE;
    }
    return faults.Opened("INF file", open.Real(path, name, style, line));
  });
  HOOK(close, Library(), SetupCloseInfFile, [this](HINF inf) {
    faults.Closed("INF file", inf);
    // It has no failure to tell.
    faults.Hits("SetupCloseInfFile", "", {});
    close.Real(inf);
  });
  HOOK(firstLine, Library(), SetupFindFirstLineA,
       [this](HINF inf, const char* section, const char* key, INFCONTEXT* line) -> BOOL {
         const std::string subject = std::string(section) + "/" + (key != nullptr ? key : "");
         if (faults.Hits("SetupFindFirstLineA", subject, {static_cast<DWORD>(ERROR_LINE_NOT_FOUND)})) return FALSE;
         return firstLine.Real(inf, section, key, line);
       });
  HOOK(nextLine, Library(), SetupFindNextLine, [this](INFCONTEXT* line, INFCONTEXT* next) -> BOOL {
    if (faults.Hits("SetupFindNextLine", "", {static_cast<DWORD>(ERROR_LINE_NOT_FOUND)})) return FALSE;
    return nextLine.Real(line, next);
  });
  HOOK(fieldCount, Library(), SetupGetFieldCount, [this](INFCONTEXT* line) -> DWORD {
    if (faults.Hits("SetupGetFieldCount", "", {ERROR_INVALID_PARAMETER})) return 0;
    return fieldCount.Real(line);
  });
  HOOK(field, Library(), SetupGetStringFieldA,
       [this](INFCONTEXT* line, DWORD index, char* text, DWORD size, DWORD* needed) -> BOOL {
         if (faults.Hits("SetupGetStringFieldA", std::to_string(index),
                         {ERROR_INVALID_PARAMETER, ERROR_INSUFFICIENT_BUFFER})) {
           return FALSE;
         }
         const BOOL given = field.Real(line, index, text, size, needed);
         if (given) faults.Answer(text);
         return given;
       });
  HOOK(lineText, Library(), SetupGetLineTextA,
       [this](INFCONTEXT* line, HINF inf, const char* section, const char* key, char* text, DWORD size,
              DWORD* needed) -> BOOL {
         if (faults.Hits("SetupGetLineTextA", key,
                         {static_cast<DWORD>(ERROR_LINE_NOT_FOUND), ERROR_INSUFFICIENT_BUFFER})) {
           return FALSE;
         }
         const BOOL given = lineText.Real(line, inf, section, key, text, size, needed);
         if (given) faults.Answer(text);
         return given;
       });
  HOOK(information, Library(), SetupGetInfInformationA,
       [this](const void* inf, DWORD search, SP_INF_INFORMATION* info, DWORD size, DWORD* needed) -> BOOL {
         if (faults.Hits("SetupGetInfInformationA", "", {ERROR_INVALID_PARAMETER, ERROR_INSUFFICIENT_BUFFER}))
           return FALSE;
         return information.Real(inf, search, info, size, needed);
       });
  HOOK(originalFile, Library(), SetupQueryInfOriginalFileInformationA,
       [this](SP_INF_INFORMATION* info, UINT index, PSP_ALTPLATFORM_INFO platform,
              SP_ORIGINAL_FILE_INFO_A* file) -> BOOL {
         if (faults.Hits("SetupQueryInfOriginalFileInformationA", "",
                         {ERROR_INVALID_PARAMETER, ERROR_INVALID_USER_BUFFER})) {
           return FALSE;
         }
         const BOOL given = originalFile.Real(info, index, platform, file);
         if (given) faults.Answer(file->OriginalInfName);
         return given;
       });
};

}  // namespace sweeps
