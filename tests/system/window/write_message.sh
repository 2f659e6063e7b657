# A message is written on the soft keyboard, to a number that is typed, and sent.
tap $main_messages $message_new $write_number
type_keys 10010
tap $write_text
type_keys hello
tap $write_send
await 30 "message to 8610010: \"hello\""
await 20 "[message] sent"
tap $exit
ask outbox "[outbox] 1 message" "10010  hello"
