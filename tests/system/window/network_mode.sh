# Another network mode is chosen, and the modem told.
tap $main_settings $settings_network $network_mode:3 $exit
await 20 "AT+MODODR=3"
tap $exit
