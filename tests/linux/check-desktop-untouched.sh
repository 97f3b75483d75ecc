#!/usr/bin/env bash
# Runs the tests that switch the desktop's accessibility on and off and checks
# that the user's own settings are as they were before: the GSettings key
# behind org.a11y.Status.IsEnabled, the dconf database file, and the switch
# itself on the user's session bus when there is one.
# Usage: check-desktop-untouched.sh TEST_BINARY...
set -euo pipefail

snapshot() {
  local db="${XDG_CONFIG_HOME:-$HOME/.config}/dconf/user"
  if [ -f "$db" ]; then
    echo "dconf $(sha256sum <"$db" | cut -d' ' -f1)"
  else
    echo "dconf none"
  fi
  if command -v gsettings >/dev/null; then
    # Read only, and with no session bus to start one for.
    echo "key $(DBUS_SESSION_BUS_ADDRESS=disabled: gsettings get org.gnome.desktop.interface \
      toolkit-accessibility 2>/dev/null || echo unknown)"
  fi
  if [ -n "${DBUS_SESSION_BUS_ADDRESS:-}" ] && command -v dbus-send >/dev/null; then
    echo "switch $(dbus-send --session --print-reply=literal --reply-timeout=2000 \
      --dest=org.a11y.Bus /org/a11y/bus org.freedesktop.DBus.Properties.Get \
      string:org.a11y.Status string:IsEnabled 2>/dev/null || echo unknown)"
  fi
}

before=$(snapshot)
for binary in "$@"; do
  "$binary" --gtest_filter='AtspiTrust.*:DesktopEndToEnd.*' --gtest_brief=1
done
after=$(snapshot)

if [ "$before" != "$after" ]; then
  echo "desktop settings changed by the tests:"
  diff <(echo "$before") <(echo "$after") || true
  exit 1
fi
echo "desktop settings unchanged:"
echo "$before"
