# The module is switched off in the settings, and on again.
tap $main_settings $settings_modem:2 $exit
await 60 "module off"
await 60 "the modem is closed"
tap $main_settings $settings_modem:1 $exit
await 60 "module powered"
await 120 "the modem is open"
