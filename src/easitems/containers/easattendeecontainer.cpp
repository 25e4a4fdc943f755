// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/containers/easattendeecontainer.h"

bool EasAttendeeContainer::operator==(const EasAttendeeContainer &other) const
{
    return mEmail == other.mEmail && mName == other.mName && mAttendeeStatus == other.mAttendeeStatus
        && mAttendeeType == other.mAttendeeType && mProposedStartTime == other.mProposedStartTime
        && mProposedEndTime == other.mProposedEndTime;
}
