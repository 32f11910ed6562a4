#!/usr/bin/env bash
# Fails on an #include that climbs: a wing may include only wings on its own floor list below.
# Usage: check_include_direction.sh SOURCE_FOLDER
set -u
root=$1
declare -A below=(
  [platform]="platform"
  [core]="core platform"
  [modeldef]="modeldef core platform"
  [sequence]="sequence modeldef core platform"
  [comm]="comm modeldef core platform"
  [commands]="commands comm sequence modeldef core platform"
  [compile]="compile commands comm sequence modeldef core platform"
  [execution]="execution compile commands comm sequence modeldef core platform"
  [session]="session execution compile commands comm sequence modeldef core platform"
  [editing]="editing compile sequence modeldef core platform"
  [graph]="graph editing sequence modeldef core platform"
  [forms]="forms graph editing session execution compile commands comm sequence modeldef core platform"
  [view]="view graph editing execution sequence modeldef core platform"
  [dialogs]="dialogs view forms graph editing session execution compile commands comm sequence modeldef core platform"
  [ui]="ui view graph forms dialogs editing session execution compile commands comm sequence modeldef core platform"
  [cli]="cli editing session execution compile commands comm sequence modeldef core platform"
  [app]="app ui view graph forms dialogs editing cli session execution compile commands comm sequence modeldef core platform"
)
bad=0
checked=0
while IFS= read -r file; do
  wing=${file#"$root"/src/}
  wing=${wing%%/*}
  allowed=${below[$wing]:-}
  if [ -z "$allowed" ]; then
    echo "$file: folder '$wing' has no floor"; bad=1; continue
  fi
  checked=$((checked + 1))
  while IFS=: read -r line include; do
    target=${include#*\"}; target=${target%%/*}
    case " $allowed " in
      *" $target "*) ;;
      *) echo "$file:$line: $wing includes $target, which does not stand below it"; bad=1 ;;
    esac
  done < <(grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]+"' "$file")
  case $wing in
    ui|dialogs|view|app) ;;
    *) if grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]+<Q' "$file"; then
         echo "$file: Qt below the window"; bad=1
       fi ;;
  esac
done < <(find "$root/src" -name '*.h' -o -name '*.cpp')
[ "$checked" -gt 0 ] || { echo "no source file found below $root/src"; bad=1; }
# The stand-ins share only core, platform and the C headers of the libraries with the program.
while IFS=: read -r file line include; do
  target=${include#*\"}; target=${target%%/*}
  case $target in
    core|platform|standins|*.h\") ;;  # a bare file name lies in the same folder
    *) echo "$file:$line: a stand-in includes $target"; bad=1 ;;
  esac
done < <(grep -rnE --include='*.h' --include='*.cpp' '^[[:space:]]*#[[:space:]]*include[[:space:]]+"' "$root/standins")
exit $bad
