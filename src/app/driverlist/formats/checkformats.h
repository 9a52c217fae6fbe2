/// @file
/// How the program shows whether the drivers of machines keep a policy, in UTF-8.
#pragma once

#include <string>
#include <vector>

#include "formats/table.h"
#include "inventory/policycheck.h"
#include "terminal/page.h"

namespace driverlist {

/// For each machine, with a line about it when there are several: for each rule that is broken a line, and below it a
/// row per driver; then the rules that passed and those that were skipped, and a line of counts. `checks` are of
/// `policy`.
std::string FormatPolicyCheck(const inventory::Policy& policy, const std::vector<inventory::PolicyCheck>& checks,
                              const Page& page);

/// A row for each rule that passed or was skipped, and for each violation of the others: "host", "rule", "severity",
/// "result", "message", "kind", "subject" and "evidence".
Table PolicyCheckTable(const inventory::Policy& policy, const std::vector<inventory::PolicyCheck>& checks);

/// JUnit XML: a test suite for each machine, with a test case for each rule. A broken rule is a failure that lists the
/// drivers; one that is about no driver is skipped. Characters that XML does not allow are shown as Visible() shows
/// them.
std::string FormatJUnit(const inventory::Policy& policy, const std::vector<inventory::PolicyCheck>& checks);

}  // namespace driverlist
