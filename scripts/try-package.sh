#!/bin/sh
# The part of check-package.sh that runs inside the clean system. $1 is the version that is expected.
set -eu
export DEBIAN_FRONTEND=noninteractive PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8
cd /tmp

# Every file, and every user and group; not the notes of packages and users that the system keeps for itself.
everything() {
    find / -xdev \( -path /proc -o -path /dev -o -path /tmp -o -path /run -o -path /var/log -o -path /var/cache \
        -o -path /var/lib/apt -o -path /var/lib/dpkg \) -prune -o -print | grep -v "^/etc/[a-z]*-$" | sort
    cut -d: -f1 /etc/passwd /etc/group
}

apt-get update -qq
apt-get install -y -qq --no-install-recommends dbus dbus-daemon ppp udev
for package in ./varkel_*.deb ./varkel-simulator_*.deb; do
    apt-get satisfy -y -qq --no-install-recommends "$(dpkg-deb -f "$package" Depends)"
done
everything >before
useradd --create-home driver

dpkg -i ./varkel_*.deb ./varkel-simulator_*.deb
[ "$(varkel --version)" = "varkel $1" ]
[ "$(varkel-sim --version)" = "$1" ]
varkelctl --help >/dev/null
id varkel | grep -q dialout
systemd-analyze verify --man=no /usr/lib/systemd/system/varkel.service
XDG_RUNTIME_DIR=/run systemd-analyze --user verify --man=no /usr/lib/systemd/user/varkel.service

# A driver's own run, by touch: everything comes from the package but the unit.
cat >scenario.txt <<'TEXT'
expect  "[input]" within 60s
+1s     type tap 1059
+200ms  type tap 1033
+200ms  type tap 1034
+200ms  type tap 1060
+200ms  type tap 1
expect  "the modem is open" within 120s
+1s     call 13800138000
expect  "UM_CALLIN" within 10s
+1s     type picture call.png
+1s     end
TEXT
su driver -c 'cd && dbus-run-session -- varkel-sim --unit-dir unit --pin 1234 --scenario /tmp/scenario.txt -- \
    varkel --offscreen --unit-file unit/unit.conf --language portugal --palette day'
cp /home/driver/call.png .

# The system's service, with its user, its unit file and its bus, on a modem that never comes.
mkdir -p /run/dbus /run/varkel /var/lib/varkel
chown varkel:varkel /run/varkel /var/lib/varkel
dbus-daemon --system --fork
mkfifo -m 0666 /run/varkel/console
exec 3<>/run/varkel/console
su varkel -s /bin/sh -c 'exec varkel --headless --unit-file /etc/varkel/unit.conf' </run/varkel/console >service.log 2>&1 &
service=$!
for second in $(seq 20); do
    su varkel -s /bin/sh -c 'varkelctl --unit-file /etc/varkel/unit.conf status' >status.log 2>&1 && break
    sleep 1
done
[ "$second" -lt 20 ] || { cat service.log status.log; exit 1; }
su driver -c 'varkelctl --unit-file /etc/varkel/unit.conf status' && exit 1
echo status >/run/varkel/console
echo quit >/run/varkel/console
wait $service || { cat service.log; exit 1; }
grep -q "modem" service.log

dpkg --purge varkel-simulator varkel
userdel --remove driver
everything >after
diff before after
