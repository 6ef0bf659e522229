// The services over a store of another kind: maps of this process, with no folder and no database.
#include <gmock/gmock.h>
#include <platform/elemdb.h>
#include <platform/hwinv.h>
#include <platform/if_index.h>
#include <platform/lagmap.h>
#include <platform/msgq.h>
#include <platform/platform_info.h>
#include <platform/portidx.h>
#include <vswitch/interface_index.h>
#include <vswitch/vswitch.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <utility>

#include "test_switch.h"

namespace {

using namespace vswitch;

// What a shared switch consists of; every store that is opened on it sees the others' changes.
struct shared_maps {
  chassis_description chassis;
  uint64_t generation = 1;
  bool has_manager = false;
  switch_presence presence = switch_presence::in_place;
};

class map_role final : public manager_role {
 public:
  explicit map_role(shared_maps& of) : of_(of) {
    if (of_.has_manager) throw switch_error("maps: has a manager");
    of_.has_manager = true;
  }
  ~map_role() override { of_.has_manager = false; }

 private:
  shared_maps& of_;
};

class map_store final : public switch_store {
 public:
  map_store(shared_maps& shared, std::string message_place) : shared_(shared), message_place_(std::move(message_place)) {}

  const std::string& name() const noexcept override { return name_; }
  const std::string& message_place() const noexcept override { return message_place_; }

  bool look_up(uint32_t table, std::span<const std::byte> key, void* value, size_t size) noexcept override {
    uint32_t number = 0;
    if (key.size() != sizeof number) return false;
    std::memcpy(&number, key.data(), sizeof number);
    const auto bytes = element(table, number);
    if (bytes.empty()) return false;
    std::memcpy(value, bytes.data(), std::min(size, bytes.size()));
    return true;
  }

  std::shared_ptr<manager_role> serve() override { return std::make_shared<map_role>(shared_); }
  switch_presence presence() override { return shared_.presence; }
  chassis_description describe() override { return shared_.chassis; }
  uint64_t generation() noexcept override { return shared_.generation; }

  uint32_t change_map(const std::function<void(port_map&)>& change) override {
    port_map map = shared_.chassis.map;
    change(map);
    shared_.chassis.map = map;
    return ++shared_.chassis.change_counter;
  }

  std::optional<time_reference> set_time_reference(uint32_t vsan, const std::optional<time_reference>& reference) override {
    auto& times = shared_.chassis.times;
    const auto known = times.find(static_cast<uint16_t>(vsan));
    const auto before = known == times.end() ? std::nullopt : std::optional(known->second);
    times.erase(static_cast<uint16_t>(vsan));
    if (reference) times.emplace(static_cast<uint16_t>(vsan), *reference);
    return before;
  }

 private:
  template <typename numbers>
  static std::span<const std::byte> bytes_of(const numbers& table) {
    return std::as_bytes(std::span(table));
  }

  std::span<const std::byte> element(uint32_t table, uint32_t number) const {
    const port_map& map = shared_.chassis.map;
    if (table != FICON_ELEMDB_TABLE_PMAP) return {};
    switch (number) {
      case FICON_PMAP_ELEM_PAPN:
        return bytes_of(map.pa_to_pn);
      case FICON_PMAP_ELEM_PNIF:
        return bytes_of(map.pn_to_if);
      case FICON_PMAP_ELEM_PORTPN:
        return bytes_of(map.port_to_pn);
      case FICON_PMAP_ELEM_VSAN_ARRAY:
        return bytes_of(map.vsan_array);
      case FICON_PMAP_ELEM_PORTVSAN:
        return bytes_of(map.port_to_vsan);
      case FICON_PMAP_ELEM_CHANGE_COUNTER:
        return std::as_bytes(std::span(&shared_.chassis.change_counter, 1));
      default:
        return {};
    }
  }

  shared_maps& shared_;
  const std::string name_ = "maps";
  const std::string message_place_;
};

class SecondStore : public ::testing::Test {
 protected:
  SecondStore() {
    shared_.chassis = vswitch_test::small_switch();
    use_switch(std::make_unique<map_store>(shared_, ""));
  }
  ~SecondStore() override { use_switch(nullptr); }

  shared_maps shared_;
};

TEST_F(SecondStore, AnswersTheLibrary) {
  const auto& entry = shared_.chassis.map.port_to_pn[0];
  uint16_t pn = 0;
  ASSERT_GT(ficon_get_max_ficon_ports(), 0);
  EXPECT_EQ(ficon_get_pmap_portpn(), 0);
  EXPECT_EQ(ficon_pmap_port_to_pn[0].pa, entry.pa);
  EXPECT_EQ(ficon_pmap_get_pa_to_pn(0x20, &pn), 0u);
  EXPECT_EQ(pn, entry.pn);
}

TEST_F(SecondStore, AnswersTheServices) {
  ficon_platform_info info{};
  int32_t type = 0;
  uint16_t index = 0;
  uint8_t interface_kind = 0;
  lagmap_port_query query{};
  query.if_index = fc_port_index(1, 3);
  EXPECT_EQ(get_platform_info(&info), 0);
  EXPECT_EQ(hwinv_get_chassis_type(&type), 0);
  EXPECT_EQ(type, 32);
  EXPECT_EQ(portidx_port_by_if_index(fc_port_index(2, 1), &index), 0);
  EXPECT_EQ(index, 48);
  EXPECT_EQ(lagmap_get_port(&query), 0);
  EXPECT_EQ(query.channel, 5u);
  EXPECT_EQ(if_index_get_type(logical_index(IF_TYPE_FCIP, 3), &interface_kind), 0);
}

TEST_F(SecondStore, ChangesOfAnotherStoreAreSeen) {
  map_store other(shared_, "");
  EXPECT_EQ(other.change_map([](port_map& map) { map.pa_to_pn[0x20] = 9; }), 8u);
  EXPECT_EQ(ficon_get_pmap_papn(), 0);
  EXPECT_EQ(ficon_pmap_pa_to_pn[0x20], 9);
}

TEST_F(SecondStore, ReplacementIsNoticedByItsGeneration) {
  shared_.chassis.type = 38;
  EXPECT_EQ(chassis_in_use()->type, 32);
  ++shared_.generation;
  EXPECT_EQ(chassis_in_use()->type, 38);
}

TEST_F(SecondStore, WithoutAPlaceForMessagesThereAreNone) {
  errno = 0;
  EXPECT_EQ(msgq_open(101), nullptr);
  EXPECT_EQ(errno, ENODEV);
}

TEST_F(SecondStore, MessagesAreCarriedWhereItSays) {
  const vswitch_test::temporary_folder place;
  use_switch(std::make_unique<map_store>(shared_, place.path()));
  msgq* server = msgq_open(101);
  msgq* client = msgq_open(0);
  ASSERT_NE(server, nullptr);
  const msgq_addr to = {FICON_MGR_NODE, 101};
  EXPECT_EQ(msgq_connect(client, &to), 0);
  msgq_close(client);
  msgq_close(server);
}

} // namespace
