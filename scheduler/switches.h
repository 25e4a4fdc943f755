// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/**
 * Which accounts are to be kept always on, by their number and the profile that they are synchronised by. A
 * file of the user's keeps it; it is read anew for each question, so that an edit counts at once.
 */
class Switches
{
public:
    /** The file is made with the first switch; its folder as well. */
    explicit Switches(const QString &fileName);

    /** False for an account that was never switched, and while the file cannot be read. */
    bool isOn(uint accountId, const QString &profile) const;
    /** False, with nothing changed, if the file cannot be written. */
    bool set(uint accountId, const QString &profile, bool on);

    QString fileName() const { return mFileName; }

private:
    QString mFileName;
};
