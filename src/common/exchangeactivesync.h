// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/** Constants and helpers that the engine and its clients share. */
namespace ExchangeActiveSync {

/** Protocol versions in use; the high byte is the major version, so they compare as integers. */
enum ProtocolVersion {
    ProtocolVersionUnknown = 0,
    ProtocolVersion120 = 0x1200,
    ProtocolVersion121 = 0x1201,
    ProtocolVersion140 = 0x1400,
    ProtocolVersion141 = 0x1401,
    ProtocolVersion160 = 0x1600,
    ProtocolVersion161 = 0x1601
};

} // namespace ExchangeActiveSync
