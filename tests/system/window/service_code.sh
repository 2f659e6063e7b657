# A service code is dialled; the network asks, and answers.
tell "!ussd Your balance is 12.50"
tell "!ussd-ask Press 1 for the balance"
tap $main_dial_pad $pad_star $pad_1 $pad_0 $pad_0 $pad_hash $pad_dial
await 30 "Press 1 for the balance"
tap $ussd_reply $code_1 $ok
await 30 "Your balance is 12.50"
tap $ok
await_main
