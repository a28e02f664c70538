#pragma once

// The choices of a tidy, shared by the tidy sheet, the command line and the self-check: which
// screenshots it acts on, and what filing or clearing out would do with them.

#include "app/AppModel.h"
#include "core/TidyPlan.h"

#include <string>
#include <vector>

namespace lumivale {

enum class TidyScope {
    loose,     // lying loose in the screenshot folder
    view,      // the screenshots of the current place
    everything // every screenshot that has been read
};

struct TidyChoices {
    TidyScope scope = TidyScope::loose;
    TidyLayout layout = TidyLayout::byCategory;
    bool rename = false;
    bool keepPrivate = true; // leave IDs and documents (every private screenshot) alone
    int days = 90;           // clearing out: older than this many days
};

// The ages clearing out offers, in days: 1 month, 3 months, 6 months, 1 year.
inline constexpr int clearAges[] = {30, 90, 182, 365};

// What a scope is called: "Loose on the Desktop" (or "Loose in the screenshot folder"),
// "This view (…)" with the current place's name, "Everything read".
std::string tidyScopeLabel(const AppModel& model, TidyScope scope);
// Whether any screenshot lies loose in the screenshot folder, private or not.
bool anyLoose(const AppModel& model);
// The screenshots of the scope, less the private ones when they are left alone.
std::vector<ShotPtr> tidyCandidates(const AppModel& model, const TidyChoices& choices);
// The plan for filing the candidates into the archive.
TidyPlan fileIntoFolders(const AppModel& model, const TidyChoices& choices);
// The read candidates older than the chosen age, oldest first.
std::vector<ShotPtr> clearOut(const AppModel& model, const TidyChoices& choices);

} // namespace lumivale
