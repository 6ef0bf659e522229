/* Loading and unloading: what libchnsw.so asks of the process, in order, when the loader maps and unmaps it. This program
 * is not linked with the library; it loads the shipped file. */
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "libchnsw.h"
#include "programmable_platform.h"
#include "release_watch.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsNull;
using ::testing::NotNull;

constexpr char kLoadCall[] =
    "memacct_init(libchnsw, 206, [LIBCHNSW_MEM_vsaninstall, LIBCHNSW_MEM_ifindex, LIBCHNSW_MEM_papn, "
    "LIBCHNSW_MEM_pnif, LIBCHNSW_MEM_vsanlist, LIBCHNSW_MEM_portpn], 6)";

class LibraryLifecycle : public ::testing::Test {
 protected:
  LibraryLifecycle() {
    chnsw_test::forget_releases();
    platform.reset();
  }
  ~LibraryLifecycle() override {
    if (library_ != nullptr) dlclose(library_);
    platform.reset();
  }

  void load() {
    library_ = dlopen(CHNSW_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (library_ == nullptr) throw std::runtime_error(dlerror());
  }

  void unload() {
    dlclose(library_);
    library_ = nullptr;
  }

  // An exported operation or global of the loaded library.
  template <class Symbol>
  Symbol* symbol(const char* name) {
    void* address = dlsym(library_, name);
    if (address == nullptr) throw std::runtime_error(std::string("no ") + name);
    return reinterpret_cast<Symbol*>(address);
  }

  // Fills one exported pointer with a buffer that a release of shows in the log.
  template <class Value>
  void fill(const char* name) {
    auto* buffer = static_cast<Value*>(malloc(sizeof(Value)));
    *symbol<Value*>(name) = buffer;
    chnsw_test::watch_release(buffer, name);
  }

  void fill_all() {
    fill<uint16_t>("ficon_pmap_port_to_vsan");
    fill<ficon_pmap_port_entry>("ficon_pmap_port_to_pn");
    fill<uint16_t>("ficon_pmap_pa_to_pn");
    fill<uint32_t>("ficon_pmap_pn_to_logif");
    fill<ficon_platform_info>("libchnsw_pinfo");
  }

  chnsw_test::programmable_platform& platform = chnsw_test::the_platform();

 private:
  void* library_ = nullptr;
};

TEST_F(LibraryLifecycle, LoadingRegistersTheSixMemoryTypesAndDoesNothingElse) {
  load();
  EXPECT_THAT(platform.all_calls(), ElementsAre(kLoadCall));
}

TEST_F(LibraryLifecycle, LoadingIgnoresTheResultOfTheRegistration) {
  platform.memacct_init_status = -1;

  load();

  ficon_platform_info info;
  EXPECT_EQ(symbol<int32_t(ficon_platform_info*)>("ficon_get_platform_info")(&info), 0);
  EXPECT_THAT(platform.all_calls(), ElementsAre(kLoadCall, "get_platform_info()", "memacct_alloc(206, 5, 8)"));
}

TEST_F(LibraryLifecycle, LoadedLibraryHasEmptyCachesAndZeroedVariables) {
  load();

  EXPECT_THAT(*symbol<uint16_t*>("ficon_pmap_port_to_vsan"), IsNull());
  EXPECT_THAT(*symbol<ficon_pmap_port_entry*>("ficon_pmap_port_to_pn"), IsNull());
  EXPECT_THAT(*symbol<uint16_t*>("ficon_pmap_pa_to_pn"), IsNull());
  EXPECT_THAT(*symbol<uint32_t*>("ficon_pmap_pn_to_logif"), IsNull());
  EXPECT_THAT(*symbol<ficon_platform_info*>("libchnsw_pinfo"), IsNull());
  EXPECT_THAT(*symbol<ficon_convert_fn>("convert_fnptr"), IsNull());
  EXPECT_EQ(*symbol<int32_t>("MAX_FICON_PORTS"), 0);
  EXPECT_EQ(*symbol<int32_t>("fastpath_got_vsan_port"), 0);
  EXPECT_THAT(*symbol<uint8_t[32]>("ficon_port_to_vsan_array"), ::testing::Each(0));
}

TEST_F(LibraryLifecycle, UnloadingWithEmptyCachesUnregistersOnly) {
  load();
  platform.forget_calls();

  unload();

  EXPECT_THAT(platform.all_calls(), ElementsAre("memacct_uninit(206)"));
}

TEST_F(LibraryLifecycle, UnloadingFreesTheFiveBuffersInOrderThenUnregisters) {
  load();
  fill_all();
  platform.forget_calls();

  unload();

  EXPECT_THAT(platform.all_calls(),
              ElementsAre("free(ficon_pmap_port_to_vsan)", "free(ficon_pmap_port_to_pn)", "free(ficon_pmap_pn_to_logif)",
                          "free(ficon_pmap_pa_to_pn)", "free(libchnsw_pinfo)", "memacct_uninit(206)"));
}

TEST_F(LibraryLifecycle, UnloadingSetsEveryPointerToNull) {
  load();
  fill_all();
  const auto* port_to_vsan = symbol<uint16_t*>("ficon_pmap_port_to_vsan");
  const auto* port_to_pn = symbol<ficon_pmap_port_entry*>("ficon_pmap_port_to_pn");
  const auto* pa_to_pn = symbol<uint16_t*>("ficon_pmap_pa_to_pn");
  const auto* pn_to_logif = symbol<uint32_t*>("ficon_pmap_pn_to_logif");
  const auto* pinfo = symbol<ficon_platform_info*>("libchnsw_pinfo");
  int looks = 0;
  platform.on_call = [&](const std::string& call) {
    if (call != "memacct_uninit(206)") return;
    ++looks;
    EXPECT_THAT(*port_to_vsan, IsNull());
    EXPECT_THAT(*port_to_pn, IsNull());
    EXPECT_THAT(*pa_to_pn, IsNull());
    EXPECT_THAT(*pn_to_logif, IsNull());
    EXPECT_THAT(*pinfo, IsNull());
  };

  unload();

  EXPECT_EQ(looks, 1);
}

TEST_F(LibraryLifecycle, UnloadingLeavesOutWhatWasNeverFetched) {
  load();
  fill<uint32_t>("ficon_pmap_pn_to_logif");
  platform.forget_calls();

  unload();

  EXPECT_THAT(platform.all_calls(), ElementsAre("free(ficon_pmap_pn_to_logif)", "memacct_uninit(206)"));
}

TEST_F(LibraryLifecycle, UnloadingFreesWhatTheOperationsAllocated) {
  load();
  symbol<int32_t()>("ficon_get_max_ficon_ports")();
  symbol<int32_t(uint32_t)>("ficon_pmap_prepare_fastpath")(10);
  symbol<int32_t()>("ficon_get_pmap_papn")();
  ficon_platform_info info;
  symbol<int32_t(ficon_platform_info*)>("ficon_get_platform_info")(&info);
  ASSERT_EQ(platform.allocations().size(), 5u);
  for (const auto& granted : platform.allocations()) chnsw_test::watch_release(granted.address, "allocation");
  platform.forget_calls();

  unload();

  EXPECT_EQ(platform.count("free(allocation)"), 5);
}

TEST_F(LibraryLifecycle, UnloadingReallyUnmapsTheLibrary) {
  load();
  unload();
  EXPECT_THAT(dlopen(CHNSW_LIBRARY, RTLD_NOW | RTLD_NOLOAD), IsNull());
}

TEST_F(LibraryLifecycle, LoadedAgainTheLibraryIsFresh) {
  load();
  fill_all();
  *symbol<int32_t>("MAX_FICON_PORTS") = 254;
  unload();
  platform.forget_calls();

  load();

  EXPECT_THAT(platform.all_calls(), ElementsAre(kLoadCall));
  EXPECT_EQ(*symbol<int32_t>("MAX_FICON_PORTS"), 0);
  EXPECT_THAT(*symbol<ficon_platform_info*>("libchnsw_pinfo"), IsNull());
}

} // namespace
