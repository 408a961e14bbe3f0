#!/bin/sh
# Opens the test page in Firefox ESR with a throwaway profile that skips the
# first-run pages and the data-reporting notice; no accessibility flags: the
# library switches accessibility on by itself.
profile=$(mktemp -d /tmp/zeblo-firefox.XXXXXX)
cat >"$profile/user.js" <<'PREFS'
user_pref("browser.aboutwelcome.enabled", false);
user_pref("browser.startup.homepage_override.mstone", "ignore");
user_pref("datareporting.policy.dataSubmissionEnabled", false);
user_pref("toolkit.telemetry.reportingpolicy.firstRun", false);
user_pref("browser.shell.checkDefaultBrowser", false);
user_pref("app.update.enabled", false);
user_pref("network.connectivity-service.enabled", false);
user_pref("browser.newtabpage.enabled", false);
PREFS
exec firefox-esr --no-remote --profile "$profile" "file://$(dirname "$(readlink -f "$0")")/page.html"
