# All messages of a box are deleted, but not the one that comes in while the question stands.
tell "!sms 13800138001 first"
await 20 "[message] new"
tap $exit $main_messages $message_delete $delete_choice_all
tell "!sms 13800138002 second"
await 20 "[message] new"
tap $exit $ok
ask inbox "[inbox] 1 message" "13800138002  second"
tap $exit
