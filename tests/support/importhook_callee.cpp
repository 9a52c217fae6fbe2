#include "importhook_callee.h"

#include <windows.h>

unsigned long ProcessId() { return GetCurrentProcessId(); }
void* Module(const char* name) { return GetModuleHandleA(name); }
