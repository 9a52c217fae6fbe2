// Many threads at once.
#include <atomic>
#include <thread>

#include "machine.h"

namespace {

using InventoryOfAMachineInThreads = test::HostedMachine;

TEST_F(InventoryOfAMachineInThreads, IsCollectedReadAndReleasedAThousandTimes) {
  const std::string expected = test::WithoutTimes(test::Document(test::Collected().get(), DRIVERINVENTORY_JSON));
  std::atomic<int> left{1000};
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      while (left-- > 0) {
        driverinventory* inventory = nullptr;
        char* text = nullptr;
        std::size_t length = 0;
        bool isRight = driverinventory_collect(nullptr, &inventory) == DRIVERINVENTORY_OK &&
                       driverinventory_document(inventory, DRIVERINVENTORY_JSON, &text, &length) == DRIVERINVENTORY_OK;
        isRight = isRight && test::WithoutTimes(std::string(text, length)) == expected;
        isRight = driverinventory_free(text) == DRIVERINVENTORY_OK && isRight;
        isRight = driverinventory_release(inventory) == DRIVERINVENTORY_OK && isRight;
        // The thread's own failure, of a handle that other threads may have been given meanwhile in another round.
        isRight = driverinventory_release(inventory) == DRIVERINVENTORY_E_HANDLE && isRight;
        isRight = std::string(driverinventory_error()) == "That is not an inventory, or it was released." && isRight;
        if (!isRight) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

TEST(OneHandle, IsReadByManyThreads) {
  const test::Handle inventory = test::Read(test::SmallSnapshot);
  const std::string expected = test::Document(inventory.get(), DRIVERINVENTORY_JSON);
  const int32_t name = driverinventory_find_member("name");
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 1000; ++round) {
        const char* text = nullptr;
        driverinventory_text(inventory.get(), 2, name, &text, nullptr);
        if (text == nullptr || std::string(text) != "three.sys") ++wrong;
        if (round % 50 == 0 && test::Document(inventory.get(), DRIVERINVENTORY_JSON) != expected) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
