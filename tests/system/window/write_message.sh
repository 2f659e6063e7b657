# A message is written on the soft keyboard, to a number that is typed, and sent.
tap $main_messages $message_new $write_number
type_keys 10010
tap $write_text
send_written hello 10010
ask outbox "[outbox] 1 message" "10010  hello"
