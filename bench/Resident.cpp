// Stands in for the resident client: runs until the process whose id it is given ends. Without one it ends at once.

#include <windows.h>

#include <cstdlib>

int main(int argc, char** argv)
{
    const HANDLE hMaster = argc == 2 ? OpenProcess(SYNCHRONIZE, FALSE, std::strtoul(argv[1], nullptr, 10)) : nullptr;
    if (hMaster != nullptr)
    {
        WaitForSingleObject(hMaster, INFINITE);
        CloseHandle(hMaster);
    }
    return 0;
}
