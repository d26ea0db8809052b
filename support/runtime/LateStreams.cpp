// The C++ library's standard streams, made when logging starts instead of when the module is loaded.
//
// Every source that includes <iostream>, most of log4cpp's among them, has a static std::ios_base::Init, and the first
// of these makes eight streams and their locale: the largest single cost of a load. Without a log nothing in the module
// uses them. So the linker leads the constructor and the destructor here (--wrap, in cmake/LateStreams.cmake): what is
// made with the module's statics is left out, and the one that StartLogging makes is real.
//
// An object, linked in front of the libraries: the linker's list of static constructors is worked through from its end,
// so that this file's own comes behind those of the libraries. Were it to come earlier, the streams would be made at
// load. It may go when libstdc++ makes its streams at their first use.

extern "C" {
// The constructor and the destructor as the linker names the real ones, and what it leads the calls to.
void __real__ZNSt8ios_base4InitC1Ev(void* pvInit);
void __real__ZNSt8ios_base4InitD1Ev(void* pvInit);
void __wrap__ZNSt8ios_base4InitC1Ev(void* pvInit);
void __wrap__ZNSt8ios_base4InitD1Ev(void* pvInit);
}

namespace
{

bool s_bStaticsMade = false;
void* s_pvReal = nullptr; // the one object whose constructor has run

struct LastStatic
{
    LastStatic() { s_bStaticsMade = true; }
};
LastStatic s_lastStatic;

} // namespace

void __wrap__ZNSt8ios_base4InitC1Ev(void* pvInit)
{
    if (s_bStaticsMade && s_pvReal == nullptr)
    {
        s_pvReal = pvInit;
        __real__ZNSt8ios_base4InitC1Ev(pvInit);
    }
}

void __wrap__ZNSt8ios_base4InitD1Ev(void* pvInit)
{
    if (pvInit == s_pvReal)
    {
        __real__ZNSt8ios_base4InitD1Ev(pvInit);
    }
}
