#!/bin/sh
# reload.sh: tells the device's services that their configuration may have changed. A device that
# lacks both programs has its own way to do that.
if command -v reload_config >/dev/null; then
    reload_config
elif command -v ubus >/dev/null; then
    ubus call service event '{ "type": "config.change", "data": {} }'
fi
