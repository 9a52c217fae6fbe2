/// @file
/// The frame of every page: its head, style, script and table.
#pragma once

#include <string>
#include <string_view>

#include "formats/html/htmldata.h"
#include "formats/html/htmltable.h"
#include "formats/table.h"

namespace driverlist {

/// The content of the frame.
struct PageContent {
  /// A text of any origin.
  std::string title;
  /// Markup: lines made by Fact().
  std::string facts;
  /// The version of the program, a text of any origin.
  std::string toolVersion;
  std::string note;
  /// Markup above the table.
  std::string sections;
  TableTexts texts;
  PageData data;
};

/// A single HTML file in UTF-8 that needs no other file, with all columns and rows of `table` in their order.
std::string PageHtml(const Table& table, const PageContent& content);

/// A fact about the page as a whole, its value in markup; nothing if that is empty.
std::string Fact(std::string_view label, const std::string& html);

/// A time for people, or any other text as it is.
std::string TimeHtml(const std::string& time);

/// `host`, or words for a machine whose name is unknown.
std::string HostText(const std::string& host);

}  // namespace driverlist
