#pragma once
/// The test program as its own supervisor, for machines that have nothing but the program.

#include <string>
#include <vector>

/// Runs the cases of this program in child processes of it, one case after the other, and tells how they ended. A case
/// that ends its process, or does not come to an end, costs itself alone. Cases tagged [alone] get a process of their
/// own; cases tagged [cp936] are left out, and counted, where the machine has another code page.
/// @param parts a case is run when its name, its tags or its source file's name holds one of them; none: all cases. A
///              hidden case is run only when a part is its whole name.
/// @return 0 when every case passed and there was one, 1 otherwise.
int RunSelfTest(const std::vector<std::string>& parts);
