# A call comes in and is taken; another one is dialled. Both are ended on the main screen.
tell "!call 13800138000"
await 20 "13800138000 is calling"
tap $call_accept
await 20 "in a call"
hang_up

tap $main_dial_pad $pad_1 $pad_0 $pad_0 $pad_0 $pad_0 $pad_dial
await 30 "in a call"
hang_up
