# Runs in log4cpp's source folder, behind the extraction. Lets the library's calls throw.
#
# log4cpp declares most calls of Category as not throwing, and allocates memory in them. A std::bad_alloc in one of them
# ends the process: a host would die of a log line. Without the declaration the exception comes out of the call, and the
# module's log surface (diag/Log.h) drops the line. One macro of one header, which library and users share, holds it; a
# definition on the command line does not help, as the header defines the macro itself.

set(header include/log4cpp/Portability.hh)
file(READ ${header} text)
string(REGEX REPLACE "(#define LOG4CPP_NOTHROW) (noexcept|throw\\(\\))" "\\1" patched "${text}")
if(NOT patched MATCHES "#define LOG4CPP_NOTHROW[\r\n]")
    message(FATAL_ERROR "${header} does not define LOG4CPP_NOTHROW: it is another version of log4cpp")
endif()
if(NOT patched STREQUAL text)
    file(WRITE ${header} "${patched}")
endif()
