/// @file
/// Calls of the platform in a source file of their own: within one function a compiler may load an import slot once for
/// several calls, and so miss that a hook comes or goes between them.
#pragma once

unsigned long ProcessId();
void* Module(const char* name);
