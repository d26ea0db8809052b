#pragma once
/// What a person could choose on the document sheet's first page.

#include <windows.h>

#include <string>

namespace VelHost
{

/// Choices by their words; an empty one leaves the page's own. Texts are UTF-8.
struct SheetChoices
{
    std::string strPaper;       ///< a name of the page's list
    std::string strOrientation; ///< "portrait" or "landscape"
    std::string strColour;      ///< "mono" or "colour"
    std::string strSides;       ///< "one", "long" or "short": both sides, bound at that edge

    bool IsEmpty() const { return strPaper.empty() && strOrientation.empty() && strColour.empty() && strSides.empty(); }
};

/// Makes the choices on the settings page by its own controls, as clicks and the list would. Throws CommandError when
/// the page lacks a control or a paper, or when the printer does not offer the choice.
/// @param hPage the page, which has been shown.
void MakeChoices(HWND hPage, const SheetChoices& choices);

} // namespace VelHost
