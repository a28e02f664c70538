#pragma once

#include <string>
#include <vector>

namespace lumivale::ReadingLanguages {

// The language tags of the installed recognition models ("en-US", "de-DE", …); exactly
// "en-US" when none is installed.
std::vector<std::string> supported();

// The user's preferred language tags, from LANGUAGE, else LC_ALL, LC_MESSAGES, LANG
// ("de_DE.UTF-8" is "de-DE").
std::vector<std::string> preferred();

// The languages to read with, from the preferred and the supported ones: "en-US" first when
// supported, then each preferred language's best match, Chinese, Japanese and Korean last.
std::vector<std::string> defaults(const std::vector<std::string>& preferred,
                                  const std::vector<std::string>& supported);

// The recognition models for these tags as the engine takes them ("eng+deu"): each language is
// read by the model of its script where that is installed ("Latin" reads English and German
// alike), else by its own model; tags without an installed model are left out, and "eng" stands
// in when none is left.
std::string models(const std::vector<std::string>& tags);

} // namespace lumivale::ReadingLanguages
