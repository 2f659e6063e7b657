# A message comes in, shows itself, and is answered.
tell "!sms 13800138000 \"Where are you?\""
await 20 "[message] new"
tap $message_reply
type_keys here
tap $write_send
await 30 "message to 8613800138000: \"here\""
await 20 "[message] sent"
tap $exit
ask inbox "[inbox] 1 message" "13800138000  Where are you?"
ask outbox "13800138000  here"
