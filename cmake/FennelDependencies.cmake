# SPDX-License-Identifier: LGPL-2.1-or-later
find_package(PkgConfig REQUIRED)
find_package(Qt5 5.15 REQUIRED COMPONENTS Core Network Sql DBus Gui)
find_package(Qt5SystemInfo REQUIRED)
find_package(KF5CalendarCore 5.103 REQUIRED)
pkg_check_modules(WBXML REQUIRED IMPORTED_TARGET libwbxml2)
pkg_check_modules(ACCOUNTS REQUIRED IMPORTED_TARGET accounts-qt5)
pkg_check_modules(SIGNON REQUIRED IMPORTED_TARGET libsignon-qt5)
pkg_check_modules(ICAL REQUIRED IMPORTED_TARGET libical)
