# An entry is added to the phonebook; a message is written to it, and its name stands with the next call.
tap $main_contacts $contact_new $contact_name $key_shift
type_keys mary
tap $contact_mobile
type_keys 13800138003
tap $contact_save $contact_row:1 $exit $exit

tap $main_messages $message_new $write_contact $contact_row:1 $write_text
send_written hi 13800138003

miss_call 13800138003 Mary
