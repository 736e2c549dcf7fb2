#!/bin/sh
# Runs a command on the current X display with openbox managing it, a
# window manager that keeps the space of bars (struts) from the others;
# openbox ends with the command, whose status is returned.
openbox >/dev/null 2>&1 &
manager=$!
# openbox announces itself on the root window once it manages the screen.
tries=0
while [ $tries -lt 50 ] && ! xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q window; do
    sleep 0.1
    tries=$((tries + 1))
done
"$@"
status=$?
kill $manager 2>/dev/null
wait $manager 2>/dev/null
exit $status
