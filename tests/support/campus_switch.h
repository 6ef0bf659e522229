// "campus", the switch that the tests of inspect/ and of the tool ask, as chassis files.
#ifndef TESTS_SUPPORT_CAMPUS_SWITCH_H
#define TESTS_SUPPORT_CAMPUS_SWITCH_H

#include <string>

namespace campus_switch {

// Six slots, supervisors in 3 and 4: eight ports in slots 1 (line card 0) and 2 (1), four in slot 5 (2). fc1/1-4 are PN 0-3, PA
// 00-03, in VSAN 10; fc2/1-4 are PN 48-51 and the same addresses in VSAN 20; fc5/1-2 are the members of port-channel1, which is
// PN 240, PA F0 at index 1024.
inline const std::string kSmall = R"([chassis]
name = "campus"
slots = 6
type = 34
supervisors = [3, 4]
change_counter = 7

[[line_card]]
slot = 1
ports = 8
name = "channels"

[[line_card]]
slot = 2
ports = 8

[[line_card]]
slot = 5
ports = 4

[[vsan]]
number = 10
name = "production"

[[vsan]]
number = 20

[[port_channel]]
number = 1
members = ["fc5/1-2"]

[[port]]
interface = "fc1/1-4"
pn = 0
pa = 0x00
vsans = [10]

[[port]]
interface = "fc2/1-4"
pn = 48
pa = 0x00
vsans = [20]

[[port]]
index = 1024
pn = 240
pa = 0xF0
vsans = [10]

[[binding]]
pn = 240
interface = "port-channel1"
)";

// The same with ports in both VSANs (fc1/5-8), one apart from the others (fc5/3), and fcip3, which is PN 241, PA F1.
inline const std::string kWhole = kSmall + R"(
[[interface]]
name = "fcip3"

[[port]]
interface = "fc1/5-8"
pn = 4
pa = 0x10
vsans = [10, 20]

[[port]]
interface = "fc5/3"
pn = 96
pa = 0x30
vsans = [20]

[[port]]
index = 1025
pn = 241
pa = 0xF1
vsans = [20]

[[binding]]
pn = 241
interface = "fcip3"
)";

} // namespace campus_switch

#endif
