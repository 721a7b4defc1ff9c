#!/usr/bin/env bash
# The dynamic symbol tables of the shared libraries: the host's interface is there, and
# nothing of pugixml, expat, SQLite, the standard library's templates or the module's own
# helpers that no dialog calls. Prints how many symbols each library exports.
# Usage: exported-symbols.sh CORE-LIBRARY [WIDGETS-LIBRARY]
set -euo pipefail
fail() { echo "FAIL: $*" >&2; exit 1; }

symbols() { nm -D --defined-only "$1" | awk '{print $3}' | c++filt; }

check() {
  local library=$1 table
  shift
  table=$(symbols "$library")
  echo "$(basename "$library"): $(wc -l <<<"$table") symbols"
  for wanted in "$@"; do
    grep -qF -- "$wanted" <<<"$table" || fail "$(basename "$library") does not export $wanted"
  done
  # Names of the XML parser and database, the standard library's instantiations, and helpers
  # of the store, the rules and the data pack that are not for a host.
  local hidden
  hidden=$(grep -E '^(pugi::|XML_|sqlite3|std::|typeinfo (name )?for std::|vtable for std::)|(^| )(LoadDataPack|BuildStaleDatabases|BuildLibraryDatabase|ConfigFile::Open|LintSpec|LintOpenFile|TryConfig|Match|ApplyComponents|ReadCsv|FileLock::LockForEdit)\(' <<<"$table" || true)
  [ -z "$hidden" ] || fail "$(basename "$library") exports what it should keep: $hidden"
}

check "$1" 'RefreshAutoConfig' 'CQdDeConfigPresenter::Save()' 'HostDataScope::HostDataScope(' \
  'typeinfo for ComError' 'CXmlQdDeConfig::CXmlQdDeConfig(' 'XmlVisitor::addChild(' \
  'MessageBoxHandlerScope::MessageBoxHandlerScope('
if grep -qi 'NEEDED.*qt' <<<"$(readelf -d "$1")"; then fail "the core library needs Qt"; fi
if [ $# -gt 1 ]; then
  check "$2" 'CAutoQdDeConfigFacade::StartQdDeConfig(' 'CAutoConfigDlg::CAutoConfigDlg(' \
    'CDlgAttConfig::CDlgAttConfig(' 'koqdde::ui::QtMessageBoxHandler::Show('
fi
echo "exported symbols: all checks passed"
