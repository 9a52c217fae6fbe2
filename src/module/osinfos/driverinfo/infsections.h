/// @file
/// Where an INF lists the files of its package.
#pragma once

namespace Orvane {

/// A section that lists files, and the section that describes the disks they are on.
struct InfFileSection {
  const char* files;
  const char* disks;
};

/// In the order in which they are read: by name as bytes. All of them are read on every machine, so a package for
/// several processors is listed completely. The section for 64-bit ARM is left out: its files run on no machine that
/// this library supports.
constexpr InfFileSection InfFileSections[] = {{"SourceDisksFiles", "SourceDisksNames"},
                                              {"SourceDisksFiles.amd64", "SourceDisksNames.amd64"},
                                              {"SourceDisksFiles.ia64", "SourceDisksNames.ia64"},
                                              {"SourceDisksFiles.x86", "SourceDisksNames.x86"}};

}  // namespace Orvane
