// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/deviceinformation.h"
#include "common/easrequeststatus.h"
#include "protocol/base/protocolutils.h"

#include <cstdio>

int main()
{
    std::printf(
        "%s %s\n", qPrintable(DeviceInformation::userAgent()), qPrintable(EasRequestStatus::name(-4)));
    return ProtocolUtils::CommandMaxRetriesCount == 5 ? 0 : 1;
}
