// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/soak.h"

#include <QtGlobal>

bool Soak::isOn()
{
    return qEnvironmentVariableIntValue("FENNEL_SOAK") == 1;
}

int Soak::samples(int daily, int soak)
{
    return isOn() ? soak : daily;
}
