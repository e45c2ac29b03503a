// The one deliberate way a run ends abnormally: an index that the required
// behaviour leaves unguarded (an out-of-range itemAt, a step number that
// wraps around, a package or pin number that does not exist). It prints
// nothing of its own, keeps whatever is on disk, and aborts.
#pragma once

[[noreturn]] void abnormalEnd();
