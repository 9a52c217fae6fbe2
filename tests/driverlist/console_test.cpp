// driverlist on a real console.
#include <gmock/gmock.h>
#include <windows.h>
// After windows.h.
#include <winioctl.h>

#include <initializer_list>
#include <memory>
#include <numeric>

#include "commands/columns.h"
#include "console.h"
#include "formats/formats.h"
#include "inventory/input.h"
#include "inventory/snapshot.h"
#include "platform/encoding.h"
#include "platform/handles.h"
#include "scratchmachine.h"
#include "temporaryfiles.h"

using namespace driverlist;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr char Snapshot[] = "..\\samplemachine\\expected\\intel-laptop.snapshot.json";

/// Of that snapshot, on a page of `width` columns.
std::string TableOfSnapshot(std::size_t width) {
  inventory::InputFile file(Snapshot);
  Table table = TableOf(inventory::ReadSnapshot(file).records);
  std::vector<std::size_t> rows(table.rows.size());
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  const auto columns = DefaultColumns(table.columns, Format::Table, false);
  return FormatTable(PartOf(std::move(table), rows, columns), {width, false});
}

TEST(ProgramOnAConsole, ShowsATableWhole) {
  // Where a console takes colour codes for text, it breaks the lines that they make too long.
  for (const SHORT width : std::initializer_list<SHORT>{40, 80, 120, 130, 200}) {
    const test::Console console;
    console.Resize(width, 60);
    const auto program = console.StartDriverlist(L"list --from " + Orvane::WideFromUtf8(Snapshot));
    ASSERT_EQ(WaitForSingleObject(program.get(), 30000), WAIT_OBJECT_0);
    EXPECT_EQ(console.Screen() + "\n", TableOfSnapshot(static_cast<std::size_t>(width) - 1)) << width;
  }
}

/// A service whose image takes seconds to verify.
class ProgramVerifying : public test::ScratchMachine {
 protected:
  void SetUp() override {
    ScratchMachine::SetUp();
    if (IsSkipped()) return;
    m_machine = std::make_unique<Machine>();
    Lengthen(m_machine->image.Path());
  }

  /// To 20 GB of nothing, which take no room.
  static void Lengthen(const std::string& path) {
    const Orvane::FileHandle file(CreateFileW(Orvane::WideFromUtf8(path).c_str(), GENERIC_WRITE, 0, nullptr,
                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD answered = 0;
    // Wine's files are sparse anyway.
    DeviceIoControl(file.get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &answered, nullptr);
    LARGE_INTEGER size{};
    size.QuadPart = 20'000'000'000;
    ASSERT_TRUE(SetFilePointerEx(file.get(), size, nullptr, FILE_BEGIN) && SetEndOfFile(file.get()));
  }

 private:
  struct Machine {
    test::ScratchFile image{test::DriverPath("OiLarge.sys"), 4096};
    test::DriverService service{"OiLarge", "\\SystemRoot\\System32\\drivers\\OiLarge.sys"};
  };
  std::unique_ptr<Machine> m_machine;
};

/// Waits until `text` is on the screen; false after half a minute.
bool Shows(const test::Console& console, const std::string& text) {
  for (int i = 0; i < 3000; ++i) {
    if (console.Screen().find(text) != std::string::npos) return true;
    Sleep(10);
  }
  return false;
}

TEST_F(ProgramVerifying, EndsAtOnceWhenItIsInterrupted) {
  const test::TemporaryFolder folder;
  test::WriteText(folder.Path(L"list.txt"), "old");
  const test::Console console;
  console.Resize(80, 25);
  const DWORD mode = console.Mode();
  const auto program = console.StartDriverlist(L"list --verify --output \"" + folder.Path(L"list.txt") + L"\"");
  ASSERT_TRUE(Shows(console, "verifying image")) << console.Screen();

  const ULONGLONG pressed = GetTickCount64();
  console.PressCtrlC();
  ASSERT_EQ(WaitForSingleObject(program.get(), 10000), WAIT_OBJECT_0);
  EXPECT_LT(GetTickCount64() - pressed, 1000u);
  DWORD exitCode = 0;
  GetExitCodeProcess(program.get(), &exitCode);
  EXPECT_EQ(exitCode, 0xC000013A);
  EXPECT_THAT(console.Screen(), Not(HasSubstr("verifying")));
  EXPECT_EQ(console.Mode(), mode);
  EXPECT_THAT(folder.Files(), ElementsAre(L"list.txt"));
  EXPECT_EQ(test::FileContent(folder.Path(L"list.txt")), "old");
}

}  // namespace
