// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/wbxmlnode.h"

namespace Simulator {

/** Bytes to documents and back. Strict: what is not plain ActiveSync WBXML is refused with a reason. */
namespace WbxmlCodec {

/** The document as bytes. Elements that the token table does not know make it empty. */
QByteArray encode(const WbxmlNode &root);

struct Decoded
{
    WbxmlNode root; ///< null if the bytes were refused
    QString error;
};

Decoded decode(const QByteArray &bytes);

} // namespace WbxmlCodec
} // namespace Simulator
