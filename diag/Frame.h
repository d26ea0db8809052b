#pragma once
/// The frame on top of the thread's call stack, and the log category that belongs to it.
///
/// A frame is one entry of log4cpp's NDC: "module.class.function$". The NDC's text joins the entries with one blank,
/// the oldest first.

#include <windows.h>

#include <log4cpp/Category.hh>

#include <string>
#include <string_view>

/// A frame's text without the "$", and its parts, which are views into the text that they were read from. The class is
/// empty for a free function.
struct FrameName
{
    std::string_view strText;
    std::string_view strModule;
    std::string_view strClass;
    std::string_view strFunction;
};

/// The text of the calling thread's topmost frame, a view into the thread's own NDC: it lasts until the frame is
/// popped. Throws std::out_of_range when the thread has none.
std::string_view GetCurrentFrameName();

/// Splits a frame's text at its first and its last point.
/// @param frame [out] the three parts; unchanged when there is no point. strText is left alone.
/// @return 0, or -1 when there is no point.
int SplitFrameName(std::string_view strText, FrameName& frame);

/// The calling thread's topmost frame with its parts. Throws as GetCurrentFrameName.
FrameName ReadCurrentFrame();

/// The category of a function, or of its class, or of its module: the first that the configuration names, or null.
log4cpp::Category* FindCategory(const FrameName& frame);

/// What a message is written with.
struct LogTarget
{
    FrameName frame;
    log4cpp::Category* pCategory = nullptr; ///< null when the configuration has none for the frame
};

/// Reads the topmost frame, asks the filter and finds the category. Throws std::out_of_range when the thread has no
/// frame.
/// @return false when the filter keeps the message back; target has no category then.
bool FindLogTarget(LogTarget& target);
