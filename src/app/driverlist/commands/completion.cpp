#include "commands/completion.h"

#include <algorithm>
#include <string_view>

#include "commands/optiontable.h"

namespace driverlist {
namespace {

constexpr std::string_view Beginning =
    R"ps1(# Completes driverlist in PowerShell. Made by "driverlist help completion". For every session, add to $PROFILE:
#   driverlist help completion | Out-String | Invoke-Expression
Register-ArgumentCompleter -Native -CommandName 'driverlist', 'driverlist.exe' -ScriptBlock {
  param($wordToComplete, $commandAst, $cursorPosition)

  # Of each command, its options: whether a value follows, whether that is a list, which values to offer, and what it
  # does. The empty name is an argument without option.
  $commands = @{
)ps1";

constexpr std::string_view End = R"ps1(  }

  function Complete($text, $kind, $meaning) {
    [System.Management.Automation.CompletionResult]::new($text, $text, $kind, $meaning)
  }

  $words = @($commandAst.CommandElements | Select-Object -Skip 1 |
    Where-Object { $_.Extent.EndOffset -lt $cursorPosition } | ForEach-Object { $_.Extent.Text })
  $isFirst = $words.Count -eq 0
  $command = 'list'
  if (-not $isFirst -and $commands.ContainsKey($words[0])) { $command = $words[0] }
  $options = $commands[$command]
  $former = ''
  if (-not $isFirst) { $former = $words[-1] }

  if ($options.ContainsKey($former) -and $former -ne '' -and $options[$former].TakesValue) {
    # A list goes on behind its last comma. Without a result, PowerShell completes the names of files.
    $done = ''
    if ($options[$former].IsList) { $done = $wordToComplete.Substring(0, $wordToComplete.LastIndexOf(',') + 1) }
    $options[$former].Values | ForEach-Object { $done + $_ } | Where-Object { $_ -like "$wordToComplete*" } |
      ForEach-Object { Complete $_ 'ParameterValue' $_ }
    return
  }
  if ($isFirst) {
    $commands.Keys | Sort-Object | Where-Object { $_ -like "$wordToComplete*" } |
      ForEach-Object { Complete $_ 'Command' $_ }
  }
  if ($options.ContainsKey('')) {
    $options[''].Values | Where-Object { $_ -like "$wordToComplete*" } |
      ForEach-Object { Complete $_ 'ParameterValue' $_ }
  }
  if ($wordToComplete -like '-*') {
    $options.Keys | Sort-Object | Where-Object { $_ -like "$wordToComplete*" } |
      ForEach-Object { Complete $_ 'ParameterName' $options[$_].Meaning }
  }
}
)ps1";

/// A PowerShell text in which every character stands for itself.
std::string Quoted(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') quoted += c;
    quoted += c;
  }
  return quoted + "'";
}

std::string Flag(bool flag) { return flag ? "$true" : "$false"; }

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::string Values(const OptionEntry& option) {
  std::string values;
  for (const std::string& choice : option.choices) {
    // A condition continues with its sign.
    values += (values.empty() ? "" : ", ") + Quoted(option.type == "CONDITION" ? choice + "=" : choice);
  }
  return "@(" + values + ")";
}

std::string Line(const OptionEntry& option) {
  return "      " + Quoted(option.isArgument ? "" : option.name) + " = @{ TakesValue = " + Flag(!option.type.empty()) +
         "; IsList = " + Flag(EndsWith(option.type, ",...")) + "; Values = " + Values(option) +
         "; Meaning = " + Quoted(option.description) + " }\n";
}

}  // namespace

std::string CompletionScript() {
  std::string script(Beginning);
  for (const CommandOptions& command : OptionTable()) {
    script += "    " + Quoted(command.command->name) + " = @{\n";
    for (const OptionEntry& option : command.options) {
      // An argument without suggestions is the name of a file.
      if (!option.isArgument || !option.choices.empty()) script += Line(option);
    }
    script += "    }\n";
  }
  return script.append(End);
}

}  // namespace driverlist
