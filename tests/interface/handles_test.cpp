// What is no handle, and what is null.
#include <thread>

#include "machine.h"

namespace {

driverinventory* Number(std::uintptr_t number) { return reinterpret_cast<driverinventory*>(number); }

TEST(Handles, ThatAreNoneAreRefusedByEveryFunction) {
  driverinventory* released = nullptr;
  ASSERT_EQ(driverinventory_read(test::SmallSnapshot.data(), test::SmallSnapshot.size(), &released),
            DRIVERINVENTORY_OK);
  const test::Handle alive = test::Read(test::SmallSnapshot);
  ASSERT_EQ(driverinventory_release(released), DRIVERINVENTORY_OK);
  int foreign = 0;
  const auto live = reinterpret_cast<std::uintptr_t>(alive.get());
  for (driverinventory* const handle :
       {static_cast<driverinventory*>(nullptr), released, reinterpret_cast<driverinventory*>(&foreign), Number(1),
        Number(live + 4096), Number(live ^ (std::uintptr_t{1} << 63)), Number(static_cast<std::uintptr_t>(-1))}) {
    std::size_t count = 7;
    uint64_t number = 7;
    const char* text = "x";
    char* copy = reinterpret_cast<char*>(&foreign);
    EXPECT_EQ(driverinventory_count(handle, &count), DRIVERINVENTORY_E_HANDLE);
    EXPECT_EQ(count, 0u);
    EXPECT_STREQ(driverinventory_error(),
                 handle == nullptr ? "The inventory is null." : "That is not an inventory, or it was released.");
    EXPECT_EQ(driverinventory_head(handle, "host", &text, nullptr), DRIVERINVENTORY_E_HANDLE);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(driverinventory_text(handle, 0, 0, &text, nullptr), DRIVERINVENTORY_E_HANDLE);
    EXPECT_EQ(driverinventory_number(handle, 0, 0, &number), DRIVERINVENTORY_E_HANDLE);
    EXPECT_EQ(number, 0u);
    EXPECT_EQ(driverinventory_text_count(handle, 0, 0, &count), DRIVERINVENTORY_E_HANDLE);
    EXPECT_EQ(driverinventory_text_at(handle, 0, 0, 0, &text, nullptr), DRIVERINVENTORY_E_HANDLE);
    EXPECT_EQ(driverinventory_document(handle, DRIVERINVENTORY_JSON, &copy, nullptr), DRIVERINVENTORY_E_HANDLE);
    EXPECT_EQ(copy, nullptr);
    EXPECT_EQ(driverinventory_health(handle, &copy, nullptr), DRIVERINVENTORY_E_HANDLE);
    EXPECT_EQ(driverinventory_compare(alive.get(), handle, &copy, nullptr), DRIVERINVENTORY_E_HANDLE);
    EXPECT_EQ(driverinventory_compare(handle, alive.get(), &copy, nullptr), DRIVERINVENTORY_E_HANDLE);
    EXPECT_EQ(driverinventory_release(handle), handle == nullptr ? DRIVERINVENTORY_OK : DRIVERINVENTORY_E_HANDLE);
  }
}

TEST(Handles, AreManyButNotEndless) {
  std::vector<test::Handle> handles;
  driverinventory* inventory = nullptr;
  while (driverinventory_read(test::SmallSnapshot.data(), test::SmallSnapshot.size(), &inventory) ==
         DRIVERINVENTORY_OK) {
    handles.emplace_back(inventory);
  }
  EXPECT_EQ(handles.size(), 4096u);
  EXPECT_STREQ(driverinventory_error(), "More than 4096 inventories are open: release some.");
  handles.pop_back();
  handles.push_back(test::Read(test::SmallSnapshot));
  EXPECT_EQ(handles.size(), 4096u);
}

TEST(Places, ThatAreNullAreRefused) {
  const test::Handle inventory = test::Read(test::SmallSnapshot);
  EXPECT_EQ(driverinventory_collect(nullptr, nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_STREQ(driverinventory_error(), "The output pointer for the inventory is null.");
  EXPECT_EQ(driverinventory_open("x", nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_EQ(driverinventory_read("x", 1, nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_EQ(driverinventory_count(inventory.get(), nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_STREQ(driverinventory_error(), "The output pointer for the number is null.");
  EXPECT_EQ(driverinventory_head(inventory.get(), "host", nullptr, nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_STREQ(driverinventory_error(), "The output pointer for the text is null.");
  EXPECT_EQ(driverinventory_text(inventory.get(), 0, 0, nullptr, nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_EQ(driverinventory_number(inventory.get(), 0, 0, nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_EQ(driverinventory_text_count(inventory.get(), 0, 0, nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_EQ(driverinventory_text_at(inventory.get(), 0, 0, 0, nullptr, nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_EQ(driverinventory_document(inventory.get(), 1, nullptr, nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_EQ(driverinventory_health(inventory.get(), nullptr, nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_EQ(driverinventory_compare(inventory.get(), inventory.get(), nullptr, nullptr), DRIVERINVENTORY_E_ARGUMENT);
  driverinventory* opened = nullptr;
  EXPECT_EQ(driverinventory_open(nullptr, &opened), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_STREQ(driverinventory_error(), "The path is null.");
  EXPECT_EQ(driverinventory_read(nullptr, 0, &opened), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_STREQ(driverinventory_error(), "The text is null.");
  const char* text = nullptr;
  EXPECT_EQ(driverinventory_head(inventory.get(), nullptr, &text, nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_STREQ(driverinventory_error(), "The name is null.");
  char* copy = nullptr;
  EXPECT_EQ(driverinventory_document(inventory.get(), 4, &copy, nullptr), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_STREQ(driverinventory_error(), "There is no document 4.");
}

TEST(Texts, AreFreedOnceAndNoOthersAre) {
  const test::Handle inventory = test::Read(test::SmallSnapshot);
  char* text = nullptr;
  ASSERT_EQ(driverinventory_document(inventory.get(), DRIVERINVENTORY_JSON, &text, nullptr), DRIVERINVENTORY_OK);
  EXPECT_EQ(driverinventory_free(text + 1), DRIVERINVENTORY_E_HANDLE);
  EXPECT_EQ(driverinventory_free(text), DRIVERINVENTORY_OK);
  EXPECT_EQ(driverinventory_free(text), DRIVERINVENTORY_E_HANDLE);
  EXPECT_STREQ(driverinventory_error(), "That is no text of the library, or it was freed.");
  EXPECT_EQ(driverinventory_free(nullptr), DRIVERINVENTORY_OK);
}

TEST(Errors, BelongToTheirThread) {
  std::size_t count = 0;
  driverinventory_count(nullptr, &count);
  std::string seen = "not asked";
  std::thread([&seen] { seen = driverinventory_error(); }).join();
  EXPECT_EQ(seen, "");
  EXPECT_STREQ(driverinventory_error(), "The inventory is null.");
}

TEST(Errors, LeaveTheErrorOfWindowsAlone) {
  SetLastError(1234);
  driverinventory_error();
  EXPECT_EQ(GetLastError(), 1234u);
}

TEST(Versions, AreThoseOfTheHeaderAndTheProject) {
  EXPECT_EQ(driverinventory_interface_version(), static_cast<uint32_t>(DRIVERINVENTORY_INTERFACE_VERSION));
  EXPECT_STREQ(driverinventory_library_version(), PROJECT_VERSION);
}

}  // namespace
