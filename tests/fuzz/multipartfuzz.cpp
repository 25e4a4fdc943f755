// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fuzzsupport.h"

#include "protocol/fetchitemcommand.h"

namespace {

class Frames : public FetchItemCommand
{
public:
    Frames()
        : FetchItemCommand(1)
    {
        setFileReference(QStringLiteral("ref"));
        setAcceptMultipart(true);
    }

    using FetchItemCommand::processParts;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    FuzzSupport::keepQuiet();
    Frames().processParts(FuzzSupport::bytes(data, size));
    return 0;
}
