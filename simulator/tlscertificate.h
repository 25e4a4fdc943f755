// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>

namespace Simulator {

/** A certificate for "localhost" and 127.0.0.1, signed by itself and made on the spot, with its key; PEM
 * both. */
struct TlsCertificate
{
    QByteArray certificate;
    QByteArray key;

    static TlsCertificate generate();
};

} // namespace Simulator
