#pragma once

#include "support/module/ModuleTexts.h"

/// Lets the code in the test program find its texts, dialogs and icons in a module, the built one as a rule.
class TextsFrom
{
public:
    explicit TextsFrom(HMODULE hModule) : m_hOld(g_hModule) { g_hModule = hModule; }
    ~TextsFrom() { g_hModule = m_hOld; }
    TextsFrom(const TextsFrom&) = delete;
    TextsFrom& operator=(const TextsFrom&) = delete;

private:
    HMODULE m_hOld;
};
