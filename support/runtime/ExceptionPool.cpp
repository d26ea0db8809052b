// The C++ run-time's spare memory for exceptions.
//
// libstdc++ takes a block of some 73 KiB when a program or module starts, so that exceptions can be thrown when memory
// is short. It never gives the block back, so a module that links it statically loses one at every load and unload.
//
// Linked as an object, like EmulatedTls.cpp: nothing refers to it. It may go when libstdc++ frees the block itself.

namespace __gnu_cxx
{
/// Frees the block. libstdc++'s ABI; made for tools that look for lost memory.
void __freeres();
} // namespace __gnu_cxx

namespace
{

/// Gives the block back when the module is unloaded. The lowest priority that a program may use puts its destructor
/// behind all that may still throw.
struct PoolReturner
{
    ~PoolReturner() { __gnu_cxx::__freeres(); }
};
PoolReturner s_poolReturner __attribute__((init_priority(101)));

} // namespace
