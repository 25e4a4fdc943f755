// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QMetaType>
#include <QtGlobal>

/** Identifier of an account in the platform's account store; "t" on the bus. */
using EasAccountId = quint64;
