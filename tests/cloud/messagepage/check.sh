#!/usr/bin/env bash
# Shows hostile messages in the page of the service's messages, in headless Chromium: nothing of them may come to life.
#
#     tests/cloud/messagepage/check.sh [PICTURE.png]     # with a picture of harmless messages
#
# Optional: it needs the package chromium, which nothing else of the project does, and says so where it is missing.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
template=$here/../../../cloud/res/message_template.htm
command -v chromium >/dev/null || { echo "chromium is not installed: not checked"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

browse() { chromium --headless --no-sandbox --disable-gpu --user-data-dir="$work/profile" --virtual-time-budget=3000 "$@" 2>/dev/null; }

# The template with a page text as the dialog's argument.
build() {
  local text=${1//\\/\\\\}
  text=${text//\"/\\\"}
  text=${text//$'\n'/\\n}
  text=${text//</\\x3c}
  ARGUMENT=$text awk '/^<script>$/ && !done { print "<script>window.dialogArguments = \"" ENVIRON["ARGUMENT"] "\";</script>"; done = 1 } { print }' "$template" >"$2"
}

failed=0
while IFS= read -r message; do
  build "<ol START=1><li class=\"cont\">$message<br><a href=\"http://$message\">$message</a></li></ol>" "$work/page.html"
  dom=$(browse --dump-dom "file://$work/page.html")
  shown=$(sed -n '/<div id="page">/,/<div id="bar">/p' <<<"$dom")
  title=$(grep -o '<title>[^<]*' <<<"$dom" | head -1)
  # Elements and attributes of the page that was written, with the texts between them taken away.
  tags=$(tr '\n' ' ' <<<"$shown" | grep -o '<[a-zA-Z][^>]*>' || true)
  # The page's own button is the only one.
  tags=${tags/'<button id="close" type="button" autofocus="">'/}
  bad=$(grep -vE '^<(div id="(page|bar)"|(div|ol|li|p|b|i|u|em|strong|span|ul|br)( class="(header|attn|hilite|stop|cont)")?( style="text-align: center;")?|a|a href="https?://[^"<>]*" target="_blank" rel="noopener noreferrer")>$' <<<"$tags" | grep -v '^$' || true)
  if [ "$title" != "<title>FarreachVeltrix" ] || [ -n "$bad" ] || ! grep -q '<li class="cont">' <<<"$shown"; then
    printf 'came to life: %s\n  title: %s\n  elements: %s\n' "$message" "$title" "$bad"
    failed=1
  fi
done <"$here/hostile.txt"

if [ $# -gt 0 ]; then
  build '<div class="header" align="center">FarreachVeltrix returned the following messages:</div><ol START=1><li class="stop">Please renew your agreement.<br><a href="http://practice.example/renew">Renew now</a></li><li class="cont">The service is not available on Sunday from 2 to 3.<br><a href="http://practice.example/news">News</a></li></ol><p class="attn"><b>Item <span class="hilite">#1</span> must be completed before synchronization with FarreachVeltrix can proceed!</b></p>' "$work/page.html"
  browse --window-size=550,380 --screenshot="$1" "file://$work/page.html" >/dev/null
fi
[ $failed = 0 ] && echo "all messages were harmless"
exit $failed
