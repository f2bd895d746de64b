#!/usr/bin/env bash
# Builds the sample application, lets it create its databases anew in build/demo, takes an order
# through all that can happen to it, and opens the window. Without a display, or without a terminal to
# close it from, a user is played at the window on a virtual display instead, at 100 % and at 150 %,
# and pictures of it are left in build/demo/pictures-100 and build/demo/pictures-150.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh
[ -f build/dev/build.ninja ] || cmake --preset dev
cmake --build --preset dev --target orders_creation orders_road orders_window korvane_tool
programs=build/dev/examples/orders
rm -rf build/demo
"$programs/orders_creation" examples/orders build/demo
"$programs/orders_road" examples/orders build/demo

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && [ -t 1 ]; then
  echo
  echo "订单管理：关闭窗口即结束。"
  "$programs/orders" examples/orders build/demo
  exit
fi

for percent in 100 150; do
  echo
  echo "订单管理，在虚拟屏幕上操作，比例 $percent %："
  # What is done changes orders: each time in a copy.
  rm -rf "build/demo-$percent"
  cp -r build/demo "build/demo-$percent"
  result=0
  QT_SCALE_FACTOR=$(awk "BEGIN { print $percent / 100 }") scripts/with-display.sh \
    "$programs/orders" examples/orders "build/demo-$percent" --script "build/demo/pictures-$percent" || result=$?
  rm -rf "build/demo-$percent"
  [ "$result" -eq 0 ] || exit "$result"
done
echo
echo "窗口的图片：build/demo/pictures-100 和 build/demo/pictures-150"
