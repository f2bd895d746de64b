#!/usr/bin/env bash
# Installs the Debian packages that building, testing and measuring Korvane needs.
# Does nothing, and asks no package server, when all of them are there already.
set -euo pipefail

packages=(
  g++ make cmake ninja-build ccache pkg-config
  qt6-base-dev          # Qt Core, Network, Gui and Widgets; Qt SQL is the peer of the benchmarks
  qt6-translations-l10n # Chinese texts of Qt's own dialogs
  libqt6sql6-sqlite     # the drivers of that peer
  libqt6sql6-odbc
  libsqlite3-dev        # the embedded engine
  sqlite3               # its shell: a peer of the benchmarks, and makes the sample design store
  libssl-dev            # OpenSSL: a peer of the benchmarks
  mdbtools              # its mdb-export: peer of the benchmarks
  mdbtools-dev          # libmdb, the reader of Jet files
  unixodbc-dev          # the driver manager of ODBC: Microsoft SQL Server and PostgreSQL
  odbc-postgresql       # its driver for PostgreSQL
  tdsodbc               # and FreeTDS, for SQL Server
  postgresql            # the server of the tests, with pg_dump and pg_restore
  zlib1g-dev            # checksums of packet files
  libxlsxwriter-dev     # writes workbooks
  libminizip-dev        # reads them back
  libicu-dev            # code page 936, simplified and traditional Chinese
  python3-xlrd          # readers of spreadsheet files, for the tests
  python3-openpyxl
  xvfb xauth            # the virtual display of window tests and of the demonstration
  fonts-noto-cjk        # Chinese letters on it
  libgtest-dev libgmock-dev libbenchmark-dev
)

installed() { [ "$(dpkg-query -W -f='${db:Status-Abbrev}' "$1" 2>/dev/null)" = 'ii ' ]; }

missing=()
for package in "${packages[@]}"; do installed "$package" || missing+=("$package"); done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
