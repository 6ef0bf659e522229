// check: what it finds in maps that are wrong in one way each, and what it leaves alone.
#include "tool_test.h"

#include <algorithm>

namespace chnsw_test {
namespace {

using testing::HasSubstr;

class Check : public tool_test {
 protected:
  // The findings of a campus that was changed in one place.
  tool_result check(const std::string& text, const std::string& replacement) const {
    write("changed.toml", campus_with(text, replacement));
    return run({"-s", "changed.toml", "check"});
  }
};

TEST_F(Check, ConsistentMapHasNoFinding) {
  auto result = ask({"check"});
  EXPECT_EQ(result.out, "KIND  WHAT  VSAN  INDEXES  WHY\n");
  EXPECT_EQ(
      result.err,
      "chnsw: tried 254 port addresses and port numbers without a VSAN and in VSANs 10, 20: 0 findings, 9 notes (--notes "
      "shows them)\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Check, ExamplesHaveNoFinding) {
  for (const char* name : {"one-slot", "six-slot", "director-10", "director-13", "director-18"}) {
    auto result = run({"-s", std::string(CHNSW_SOURCE_DIR "/examples/") + name + ".toml", "check", "--format", "json"});
    EXPECT_EQ(result.out, "[]\n") << name;
    EXPECT_EQ(result.status, 0) << name;
  }
}

TEST_F(Check, NotesAreGoodToKnowAndNoFindings) {
  auto result = ask({"check", "--notes"});
  EXPECT_THAT(result.out,
              HasSubstr("unnumbered  fc2/5  -     258      the port has neither a port number nor a port address\n"));
  EXPECT_THAT(result.out,
              HasSubstr("shared      PA 00  -     0,254    PA to PN: several entries count and no VSAN chooses among "
                        "them: ambiguous\n"));
  EXPECT_EQ(result.status, 0);
}

TEST_F(Check, NumberWithoutAPortInAVsanThatItIsNotBoundToIsUnbound) {
  auto result = check("pa = 0xF0\nvsans = [10]", "pa = 0xF0\nvsans = [10]\nvsan = 20");
  EXPECT_THAT(result.out, HasSubstr("the port is in VSAN 20, but bound only to 10\n"));
  EXPECT_EQ(result.status, 1);
}

TEST_F(Check, AddressTwiceInOneVsanIsAmbiguous) {
  auto result = check("pn = 96\npa = 0x30\nvsans = [20]", "pn = 96\npa = 0x02\nvsans = [20]");
  EXPECT_EQ(
      result.out,
      "KIND         WHAT   VSAN  INDEXES  WHY\n"
      "unreachable  fc2/3    20  256      its own numbers, PN 50 and PA 02, do not lead to it: PA 02 is not translated\n"
      "unreachable  fc5/3    20  510      its own numbers, PN 96 and PA 02, do not lead to it: PA 02 is not translated\n"
      "ambiguous    PA 02    20  256,510  PA to PN: several ports are in the VSAN and bound to it: ambiguous\n");
  EXPECT_EQ(result.status, 1);
}

TEST_F(Check, NumberTwiceInOneVsanIsAmbiguous) {
  auto result = check("pn = 96\npa = 0x30", "pn = 50\npa = 0x30");
  EXPECT_THAT(result.out,
              HasSubstr("ambiguous    PN 50    20  256,510  PN to PA: several ports are in the VSAN and bound to it: "
                        "ambiguous\n"));
  EXPECT_EQ(result.status, 1);
}

TEST_F(Check, PortWithNumbersButNoVsanIsUnbound) {
  auto result = check("pa = 0x30\nvsans = [20]", "pa = 0x30");
  EXPECT_EQ(result.out,
            "KIND     WHAT   VSAN  INDEXES  WHY\n"
            "unbound  fc5/3  -     510      it has numbers, but is bound to no VSAN\n");
  EXPECT_EQ(result.status, 1);
}

TEST_F(Check, PortInAVsanThatItIsNotBoundTo) {
  auto result = check("pa = 0x30\nvsans = [20]", "pa = 0x30\nvsans = [20]\nvsan = 10");
  EXPECT_EQ(result.out,
            "KIND     WHAT   VSAN  INDEXES  WHY\n"
            "unbound  fc5/3    10  510      the port is in VSAN 10, but bound only to 20\n");
}

TEST_F(Check, SharedAddressWhosePortLeftTheVsanIsUnreachableThere) {
  auto result = check("interface = \"fc2/1-4\"\npn = 48\npa = 0x00\nvsans = [20]",
                      "interface = \"fc2/1-4\"\npn = 48\npa = 0x00\nvsans = [20]\nvsan = \"none\"");
  EXPECT_THAT(result.out,
              HasSubstr("unreachable  PA 02    20  256      PA to PN: several entries count, but none of their ports is "
                        "in the VSAN: not found\n"));
  EXPECT_EQ(result.status, 1);
}

TEST_F(Check, NumbersBeyondTheChassisAreUnreachable) {
  auto result = check("pn = 96\npa = 0x30", "pn = 254\npa = 0xFE");
  EXPECT_THAT(result.out,
              HasSubstr("unreachable  PN 254  -     510      index 510 carries it, but the highest port number of this "
                        "chassis is 253\n"));
  EXPECT_THAT(result.out,
              HasSubstr("unreachable  PA FE   -     510      index 510 carries it, but the highest port address of this "
                        "chassis is 253\n"));
  EXPECT_EQ(result.status, 1);
}

TEST_F(Check, BoundNumberWithoutAPortIsUnreachable) {
  auto result = check("interface = \"fc5/3\"", "index = 600");
  EXPECT_EQ(result.out,
            "KIND         WHAT   VSAN  INDEXES  WHY\n"
            "unreachable  PN 96  -     600      fc5/93 is bound to a VSAN, but there is no such port\n");
}

TEST_F(Check, UnboundNumberWithoutAPortIsKeptForLater) {
  auto result = check("interface = \"fc5/3\"\npn = 96\npa = 0x30\nvsans = [20]", "index = 600\npn = 96\npa = 0x30");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(run({"-s", "changed.toml", "check", "--notes"}).out,
              HasSubstr("reserved    PN 96  -     600      fc5/93 is not there, and bound to no VSAN\n"));
}

TEST_F(Check, MemberWithNumbersIsANote) {
  auto result = check("interface = \"fc5/3\"", "interface = \"fc5/2\"");
  EXPECT_EQ(result.out, "KIND  WHAT  VSAN  INDEXES  WHY\n");
  EXPECT_THAT(run({"-s", "changed.toml", "check", "--notes"}).out,
              HasSubstr("member      fc5/2  -     509      as a member of port-channel1 it does not answer for PN 96\n"));
}

TEST_F(Check, OneNumberWithoutTheOtherIsIncomplete) {
  EXPECT_THAT(check("pn = 96\npa = 0x30", "pn = 96").out,
              HasSubstr("incomplete  fc5/3  -     510      it has PN 96, but no port address\n"));
  EXPECT_THAT(check("pn = 96\npa = 0x30", "pa = 0x30").out,
              HasSubstr("incomplete  fc5/3  -     510      it has PA 30, but no port number\n"));
}

TEST_F(Check, BindingWhoseNumberNoEntryCarriesIsUnreachable) {
  auto result = check("[[binding]]\npn = 241", "[[binding]]\npn = 200");
  EXPECT_EQ(result.out,
            "KIND         WHAT   VSAN  INDEXES  WHY\n"
            "unreachable  fcip3  -     -        PN 200 is bound to it, but it does not lead back to a number: no index "
            "from 1024 on "
            "carries the number\n");
}

TEST_F(Check, InterfaceBoundToTwoNumbersIsAMismatch) {
  auto result = check("[[binding]]\npn = 241\ninterface = \"fcip3\"",
                      "[[binding]]\npn = 241\ninterface = \"fcip3\"\n\n[[binding]]\npn = 242\ninterface = \"fcip3\"");
  EXPECT_EQ(result.out,
            "KIND      WHAT    VSAN  INDEXES  WHY\n"
            "mismatch  PN 242  -     1025     it is bound to fcip3, which leads back to PN 241\n");
}

TEST_F(Check, BindingThatHidesAPortIsUnreachable) {
  auto result = check("[[binding]]\npn = 241", "[[binding]]\npn = 96\ninterface = \"fcip3\"\n\n[[binding]]\npn = 241");
  EXPECT_THAT(result.out,
              HasSubstr("unreachable  fc5/3    20  510      its own numbers, PN 96 and PA 30, do not lead to it: PN 96 "
                        "leads to fcip3\n"));
}

TEST_F(Check, AddressTableAgainstThePorts) {
  auto result = check("[[binding]]\npn = 240",
                      "[[address]]\npa = 0x30\npn = 97\n\n[[address]]\npa = 0x31\npn = 5\n\n"
                      "[[binding]]\npn = 240");
  EXPECT_THAT(result.out,
              HasSubstr("mismatch  PA 30  -     510      the address table says PN 97, and no index that carries the "
                        "address has that\n"));
  EXPECT_THAT(result.out, HasSubstr("mismatch  PA 31  -     -        the address table says PN 5, but no index carries the "
                                    "address\n"));
  EXPECT_EQ(result.status, 1);
}

TEST_F(Check, DataTellsKindNoteAndStatus) {
  write("changed.toml", campus_with("pn = 96\npa = 0x30\nvsans = [20]", "pn = 96\npa = 0x02\nvsans = [20]"));
  auto rows = parse_json(run({"-s", "changed.toml", "check", "--notes", "--format", "json"}).out);
  auto ambiguous = std::find_if(rows.begin(), rows.end(), [](const auto& row) { return row["kind"] == "ambiguous"; });
  ASSERT_NE(ambiguous, rows.end());
  EXPECT_EQ((*ambiguous)["note"], false);
  EXPECT_EQ((*ambiguous)["vsan"], 20);
  EXPECT_EQ((*ambiguous)["indexes"], nlohmann::json({256, 510}));
  EXPECT_EQ((*ambiguous)["status"]["name"], "FICON_RC_MULTI_IF");
}

TEST_F(Check, PortsWithoutAPlaceInTheMapAreANote) {
  write("large.toml",
        "[chassis]\nslots = 18\ntype = 38\nsupervisors = [9, 10]\n\n[[line_card]]\nslot = 5\nports = 48\n\n"
        "[[line_card]]\nslot = 18\nports = 2\n");
  auto result = run({"-s", "large.toml", "check", "--notes"});
  EXPECT_THAT(result.out, HasSubstr("unnumbered  fc5/9-48  -     -        the port map has no place for these ports\n"));
  EXPECT_THAT(result.out, HasSubstr("unnumbered  fc18/1-2  -     -        the port map has no place for these ports\n"));
  EXPECT_EQ(result.status, 0);
}

} // namespace
} // namespace chnsw_test
