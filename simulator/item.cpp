// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/item.h"

namespace Simulator {

ItemPtr Item::withInstance(const QString &, const WbxmlNode &, const UploadShape &) const
{
    return nullptr;
}

ItemPtr Item::withoutInstance(const QString &, const UploadShape &) const
{
    return nullptr;
}

std::optional<ItemAttachment> Item::attachment(int) const
{
    return std::nullopt;
}

} // namespace Simulator
