# A message comes in, shows itself, and is answered.
tell "!sms 13800138000 \"Where are you?\""
await 20 "[message] new"
tap $message_reply
send_written here 13800138000
ask inbox "[inbox] 1 message" "13800138000  Where are you?"
ask outbox "13800138000  here"
