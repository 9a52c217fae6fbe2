#include <memory>

#include "commands/columns.h"
#include "commands/commandoptions.h"
#include "commands/sharedoptions.h"

namespace driverlist {
namespace {

using inventory::Column;
using inventory::Kind;
using inventory::ListingMode;

const Formats& ListFormats() {
  static const Formats formats = {{"table", Format::Table},     {"csv", Format::Csv},   {"json", Format::Json},
                                  {"jsonl", Format::JsonLines}, {"html", Format::Html}, {"markdown", Format::Markdown}};
  return formats;
}

std::map<std::string, ListingMode> Modes() {
  std::map<std::string, ListingMode> modes;
  for (const ListingMode mode : {ListingMode::All, ListingMode::ByDevice, ListingMode::Registered}) {
    modes.emplace(inventory::ModeName(mode), mode);
  }
  return modes;
}

std::vector<std::string> KindNames() {
  std::vector<std::string> names;
  for (const Kind kind : {Kind::Service, Kind::Device, Kind::Package, Kind::Chipset}) {
    names.emplace_back(inventory::KindName(kind));
  }
  return names;
}

std::vector<Kind> KindsNamed(const std::string& names) {
  std::vector<Kind> kinds;
  for (const std::string& name : SplitAtCommas(names)) kinds.push_back(*inventory::KindNamed(name));
  return kinds;
}

/// Options whose meaning depends on others, as they were typed.
struct Texts {
  std::string columns;
  std::vector<std::string> conditions;
  std::vector<std::string> sort;
  std::string groupBy;
};

void RequireCsv(const CLI::App& command, const std::string& option, Format format) {
  if (command.count(option) > 0 && format != Format::Csv) throw CLI::ValidationError(option + " needs --format csv");
}

const Column& ColumnNamed(const std::string& option, const std::vector<Column>& columns, const std::string& name) {
  const std::size_t index = IndexOf(columns, name);
  if (index == columns.size()) throw CLI::ValidationError(option, inventory::UnknownMember(name, columns));
  return columns[index];
}

std::vector<Column> ColumnsNamed(const std::string& option, const std::vector<Column>& columns,
                                 const std::string& names) {
  std::vector<Column> chosen;
  for (const std::string& name : SplitAtCommas(names)) {
    const Column& column = ColumnNamed(option, columns, name);
    if (IndexOf(chosen, name) != chosen.size()) throw CLI::ValidationError(option, "\"" + name + "\" is named twice");
    chosen.push_back(column);
  }
  return chosen;
}

inventory::Condition ConditionIn(const std::string& text, const std::vector<Column>& columns) {
  try {
    return {text, columns};
  } catch (const inventory::ConditionProblem& problem) {
    throw CLI::ValidationError("--where", problem.what());
  }
}

/// The conditions in their order on the command line: "--or" begins the next alternative.
inventory::Conditions ConditionsIn(const CLI::App& list, const std::vector<std::string>& texts,
                                   const std::vector<Column>& columns) {
  inventory::Conditions conditions(1);
  auto text = texts.begin();
  for (const CLI::Option* const option : list.parse_order()) {
    const std::string name = option->get_name();
    if (name == "--where") conditions.back().push_back(ConditionIn(*text++, columns));
    if (name != "--or") continue;
    if (conditions.back().empty()) throw CLI::ValidationError("--or needs a --where on both sides");
    conditions.emplace_back();
  }
  if (!conditions.back().empty()) return conditions;
  if (conditions.size() > 1) throw CLI::ValidationError("--or needs a --where on both sides");
  return {};
}

std::vector<SortColumn> SortIn(const std::vector<std::string>& texts, const std::vector<Column>& columns) {
  std::vector<SortColumn> sort;
  for (const std::string& text : texts) {
    for (const std::string& name : SplitAtCommas(text)) {
      const bool isDescending = !name.empty() && name.front() == '-';
      sort.push_back({ColumnNamed("--sort", columns, name.substr(isDescending ? 1 : 0)), isDescending});
    }
  }
  return sort;
}

/// Throws if options make no sense together.
void RefuseContradictions(const CLI::App& list, const Options& options) {
  constexpr std::pair<const char*, const char*> contradictions[] = {
      {"--kind", "--mode"},        {"--third-party", "--mode"},
      {"--from", "--mode"},        {"--verify", "--mode"},
      {"--known", "--mode"},       {"--from", "--verify"},
      {"--from", "--known"},       {"--from", "--host-id"},
      {"--columns", "--group-by"}, {"--fail-if-none", "--fail-if-any"}};
  for (const auto& [option, other] : contradictions) RefuseTogether(list, option, other);
  RequireCsv(list, "--raw", options.format);
  RequireCsv(list, "--bom", options.format);
}

/// Throws for a condition that no record can meet: the empty result would look like good news. The images of a snapshot
/// may have been verified.
void RefuseUnverified(const Options& options, const std::vector<Column>& columns) {
  if (options.verify || !options.from.empty()) return;
  for (const auto& alternative : options.selection.conditions) {
    for (const inventory::Condition& condition : alternative) {
      const Column& column = columns[condition.ColumnIndex()];
      if (column.isOfVerification) {
        throw CLI::ValidationError("--where", "\"" + std::string(column.name) + "\" is only known with --verify");
      }
    }
  }
}

/// Checks the options against each other, and sets those of `texts`.
void Interpret(const CLI::App& list, const Texts& texts, Options& options) {
  RefuseContradictions(list, options);
  const std::vector<Column> columns = ColumnsOf(options.mode);
  options.columnsChosen = list.count("--columns") > 0;
  options.columns = options.columnsChosen ? ColumnsNamed("--columns", columns, texts.columns)
                                          : DefaultColumns(columns, options.format, options.verify);
  if (list.count("--group-by") > 0) options.groupBy = ColumnsNamed("--group-by", columns, texts.groupBy);
  options.selection.conditions = ConditionsIn(list, texts.conditions, columns);
  RefuseUnverified(options, columns);
  options.selection.sort = SortIn(texts.sort, options.groupBy.empty() ? columns : GroupColumns(options.groupBy));
}

/// What is shown.
void AddContent(CLI::App& list, Options& options) {
  AddValue(
      list, "--kind", [&options](const std::string& names) { options.kinds = KindsNamed(names); }, "KIND,...",
      SomeOf(KindNames()), "Only records of these kinds: " + Joined(KindNames()));
  AddFlag(list, "--third-party", options.thirdPartyOnly, "Leave out everything made by the maker of Windows");
  AddValue(
      list, "--mode", [&options](const std::string& name) { options.mode = Modes().at(name); }, "MODE",
      OneOf(Names(Modes())),
      "Instead of the inventory, show a listing of the library exactly as its hosts get it: drivers of present "
      "devices (by-device), drivers registered as services (registered), or both and the OEM packages merged, one "
      "record per name (all)");
}

/// How it is shown.
void AddForm(CLI::App& list, Options& options) {
  AddFormat(list, ListFormats(), options);
  AddFlag(list, "--raw", options.csv.isRaw,
          "With --format csv: write texts unchanged; otherwise an apostrophe is put in front of texts that a "
          "spreadsheet would take for formulas");
  AddFlag(list, "--bom", options.csv.hasBom, "With --format csv: begin with a byte order mark, which Excel needs");
}

/// Which rows. What these options may name depends on the mode, so they are checked once it is known.
void AddConditions(CLI::App& list, Texts& texts, Options& options) {
  AddValue(
      list, "--match", [&options](const std::string& text) { options.selection.match = text; }, "TEXT",
      NotEmpty("text"),
      "Only rows with a member that contains this text, ignoring case; a text with * (any text) or ? (one character) "
      "is a pattern for the whole member");
  CLI::Option* const where = AddValues(
      list, "--where", texts.conditions, "CONDITION",
      "Only rows that meet this: MEMBER=PATTERN or MEMBER!=PATTERN, where * is any text and ? one character; or "
      "MEMBER<VALUE, <=, >, >= for versions, numbers, times (2020-01-31) and ages (30d; h, d, w, y). If there are "
      "several, all of them must hold. Quote < and > for your shell");
  Offer(*where, ColumnNames(ColumnsOf({})));
  list.add_flag("--or", "Begin an alternative: either the conditions before it or those after it must hold")
      ->disable_flag_override();
}

/// Which columns, and in which order.
void AddArrangement(CLI::App& list, Texts& texts, Options& options) {
  const std::vector<std::string> members = ColumnNames(ColumnsOf({}));
  const auto takeAll = [](const std::string&) { return std::string(); };
  Offer(*AddValue(list, "--columns", texts.columns, "MEMBER,...", takeAll,
                  "Members to show: \"driverlist help members\" lists them"),
        members);
  Offer(*AddValues(list, "--sort", texts.sort, "MEMBER,...",
                   "Members to sort by; unknown values come first; -MEMBER reverses the order. Versions are ordered as "
                   "versions, numbers as numbers"),
        members);
  Offer(*AddValue(list, "--group-by", texts.groupBy, "MEMBER,...", takeAll,
                  "Count the rows that have the same values in these members; --sort may name count"),
        members);
  AddValue(
      list, "--first", [&options](const std::string& text) { options.selection.first = std::stoul(text); }, "N",
      Count(), "Only the first N rows");
  AddFlag(list, "--fail-if-none", options.failIfNone, "Exit with 1 if no row is left, with 2 if there is trouble");
  AddFlag(list, "--fail-if-any", options.failIfAny, "Exit with 1 if a row is left, with 2 if there is trouble");
}

}  // namespace

void AddListOptions(CLI::App& command, Options& options) {
  const auto texts = std::make_shared<Texts>();
  AddFrom(command, options);
  AddContent(command, options);
  AddForm(command, options);
  AddConditions(command, *texts, options);
  AddArrangement(command, *texts, options);
  AddVerify(command, options);
  AddOutput(command, options);
  AddHostAndLog(command, options);
  command.final_callback([texts, &command, &options] { Interpret(command, *texts, options); });
}

}  // namespace driverlist
