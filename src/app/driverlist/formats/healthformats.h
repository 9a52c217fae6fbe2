/// @file
/// The forms in which the program shows what deserves a look. All are UTF-8 and the same in every locale.
#pragma once

#include <string>
#include <vector>

#include "inventory/head.h"
#include "inventory/healthrules.h"
#include "terminal/page.h"

namespace driverlist {

/// For each rule that found something, a line that says what it looks for and a row per finding below. One line when
/// nothing was found.
std::string FormatHealthTable(const std::vector<inventory::Finding>& findings, const Page& page);

/// One object: the head, "summary", an object that has the number of findings of each rule, and "findings", an array of
/// objects that have "rule", "subject" and "evidence".
std::string FormatHealthJson(const std::vector<inventory::Finding>& findings, const inventory::Head& head);

}  // namespace driverlist
