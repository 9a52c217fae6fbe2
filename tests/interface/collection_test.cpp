// What a host collects is what the program lists.
#include "machine.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using InventoryOfAMachine = test::HostedMachine;

TEST_F(InventoryOfAMachine, IsTheDocumentThatTheProgramLists) {
  const test::Handle inventory = test::Collected();
  const std::string json = test::Document(inventory.get(), DRIVERINVENTORY_JSON);
  EXPECT_THAT(json, HasSubstr("\"IfNet\""));
  EXPECT_THAT(json, HasSubstr("PCI\\\\VEN_1234&DEV_5678\\\\IF2"));
  EXPECT_EQ(test::WithoutTimes(json), test::WithoutTimes(test::PrintedByDriverlist(L"list --format json")));
  EXPECT_EQ(test::WithoutTimes(test::Document(inventory.get(), DRIVERINVENTORY_JSON_LINES)),
            test::WithoutTimes(test::PrintedByDriverlist(L"list --format jsonl")));
}

TEST_F(InventoryOfAMachine, IsTheSnapshotThatTheProgramKeeps) {
  const test::TemporaryFolder folder;
  test::PrintedByDriverlist(L"snapshot \"" + folder.Path(L"kept.json") + L"\"");
  EXPECT_EQ(test::WithoutTimes(test::Document(test::Collected().get(), DRIVERINVENTORY_SNAPSHOT)),
            test::WithoutTimes(test::FileContent(folder.Path(L"kept.json"))));
}

/// What is found on the machine, without times.
std::string Findings(const driverinventory_options& options) {
  char* text = nullptr;
  std::size_t length = 0;
  EXPECT_EQ(driverinventory_health(test::Collected(&options).get(), &text, &length), DRIVERINVENTORY_OK);
  return test::WithoutTimes(test::Taken(text, length));
}

TEST_F(InventoryOfAMachine, IsExaminedAsTheProgramDoes) {
  driverinventory_options options{};
  options.size = sizeof(options);
  EXPECT_EQ(Findings(options), test::WithoutTimes(test::PrintedByDriverlist(L"health --no-verify --format json")));
  options.verify = 1;
  EXPECT_EQ(Findings(options), test::WithoutTimes(test::PrintedByDriverlist(L"health --format json")));
}

TEST_F(InventoryOfAMachine, IsOfTheKindsAskedForAndOfTheHostNamed) {
  driverinventory_options options{};
  options.size = sizeof(options);
  options.kinds = DRIVERINVENTORY_DEVICES | DRIVERINVENTORY_PACKAGES;
  options.host_id = "machine 7";
  EXPECT_EQ(test::WithoutTimes(test::Document(test::Collected(&options).get(), DRIVERINVENTORY_JSON)),
            test::WithoutTimes(
                test::PrintedByDriverlist(L"list --format json --kind device,package --host-id \"machine 7\"")));
}

struct Steps {
  std::vector<std::string> seen;
  std::size_t stopAt = static_cast<std::size_t>(-1);

  static int32_t Take(void* context, const char* what, uint64_t done, uint64_t total) {
    Steps& steps = *static_cast<Steps*>(context);
    steps.seen.push_back(std::to_string(done) + "/" + std::to_string(total) + " " + what);
    return steps.seen.size() > steps.stopAt ? 1 : 0;
  }
  driverinventory_options Options() {
    driverinventory_options options{};
    options.size = sizeof(options);
    options.progress = &Take;
    options.context = this;
    return options;
  }
};

const std::vector<std::string> AllSteps = {"0/6 drivers of devices", "1/6 drivers of services", "2/6 services",
                                           "3/6 present devices",    "4/6 all devices",         "5/6 packages"};

TEST_F(InventoryOfAMachine, SaysHowFarItIs) {
  Steps steps;
  const driverinventory_options options = steps.Options();
  test::Collected(&options);
  EXPECT_EQ(steps.seen, AllSteps);
}

TEST_F(InventoryOfAMachine, EndsWhereTheCallbackStopsIt) {
  for (std::size_t stopAt = 0; stopAt < AllSteps.size(); ++stopAt) {
    Steps steps;
    steps.stopAt = stopAt;
    const driverinventory_options options = steps.Options();
    driverinventory* inventory = reinterpret_cast<driverinventory*>(1);
    EXPECT_EQ(driverinventory_collect(&options, &inventory), DRIVERINVENTORY_E_STOPPED);
    EXPECT_EQ(inventory, nullptr);
    EXPECT_STREQ(driverinventory_error(), "The progress callback stopped the collection.");
    EXPECT_EQ(steps.seen,
              std::vector<std::string>(AllSteps.begin(), AllSteps.begin() + static_cast<std::ptrdiff_t>(stopAt) + 1));
  }
  test::Collected();
}

TEST_F(InventoryOfAMachine, CannotBeCollectedByItsOwnCallback) {
  driverinventory_options options{};
  options.size = sizeof(options);
  std::vector<std::string> refusals;
  options.context = &refusals;
  options.progress = [](void* context, const char*, uint64_t, uint64_t) -> int32_t {
    driverinventory* inventory = nullptr;
    EXPECT_EQ(driverinventory_collect(nullptr, &inventory), DRIVERINVENTORY_E_ARGUMENT);
    static_cast<std::vector<std::string>*>(context)->emplace_back(driverinventory_error());
    return 1;
  };
  driverinventory* inventory = nullptr;
  EXPECT_EQ(driverinventory_collect(&options, &inventory), DRIVERINVENTORY_E_STOPPED);
  EXPECT_THAT(refusals, ElementsAre("A progress callback cannot collect."));
}

}  // namespace
