# shellcheck disable=SC2034 # the stories use them

# What can be touched, by its number; ":N" is the Nth of those with one number, such as the rows of a list.
main_dial_pad=0 main_messages=1 main_settings=2 main_calls=3 main_contacts=4 # the cells of the main screen
main_hang_up=1                                                               # in a call
exit=1075 ok=1 delete_choice_all=1066:2
code_1=1059 code_2=1033 code_3=1034 code_4=1060
pad_1=1007 pad_star=1019 pad_0=1020 pad_hash=1021 pad_dial=1022
call_accept=1008
ussd_reply=1102
row=1101 # of the lists of messages and calls
message_new=1012 message_delete=1014 message_reply=1024
write_number=1018 write_contact=1019 write_text=1021 write_send=1022
contact_row=1030 contact_new=1061 contact_name=1040 contact_mobile=1041 contact_save=1060
settings_network=1072 settings_modem=1100 network_mode=1101
key_shift=65537 # of the soft keyboard; a character's key has the number of that
