// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactcases.h"

#include <algorithm>
#include <iterator>

namespace {

using ContactCases::Action;
using ContactCases::Moment;
using ContactCases::State;

struct Case
{
    State state;
    Action atStart;
    Action atQuery;
    Action whenNamed;
    Action whenAllReceived;
};

constexpr Case cases[] = {
    // Made on the device and not taken by the server yet, or taken in a reply that was not written down: sent
    // again under the old key, the server knows it by its client identifier.
    { { false, false, false }, Action::Leave, Action::UploadAsNew, Action::Overwrite, Action::Leave },
    { { false, false, true }, Action::Leave, Action::UploadAsNew, Action::Overwrite, Action::Leave },
    // Made on the device and taken by the server. The origin is written after the row: a contact with an
    // origin and without a row would count as the server's.
    { { false, true, false }, Action::Sign, Action::Leave, Action::Overwrite, Action::Sign },
    { { false, true, true }, Action::Sign, Action::UploadAsChange, Action::Overwrite, Action::Sign },
    // Stored from a reply that was not written down.
    { { true, false, false }, Action::Remove, Action::Await, Action::Overwrite, Action::Remove },
    { { true, false, true }, Action::Leave, Action::Await, Action::MapAsItIs, Action::Disown },
    // As it should be.
    { { true, true, false }, Action::Leave, Action::Leave, Action::Overwrite, Action::Leave },
    { { true, true, true }, Action::Leave, Action::UploadAsChange, Action::Overwrite, Action::Leave },
};

bool isSame(const State &one, const State &other)
{
    return one.hasOrigin == other.hasOrigin && one.hasRow == other.hasRow && one.isEdited == other.isEdited;
}

} // namespace

ContactCases::Action ContactCases::action(Moment moment, const State &state)
{
    const Case &found = *std::find_if(std::begin(cases), std::end(cases),
        [&state](const Case &candidate) { return isSame(candidate.state, state); });
    switch (moment) {
    case Moment::Start:
        return found.atStart;
    case Moment::Query:
        return found.atQuery;
    case Moment::Named:
        return found.whenNamed;
    case Moment::AllReceived:
        return found.whenAllReceived;
    }
    return Action::Leave;
}
