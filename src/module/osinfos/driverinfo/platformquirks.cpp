#include "platformquirks.h"

#include "platform/wine.h"

namespace Orvane {

bool SurvivesDamagedImages() { return !IsWine(); }

}  // namespace Orvane
