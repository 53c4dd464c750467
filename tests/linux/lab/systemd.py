"""What dbusmock plays of systemd: the unit of the file server. It is a template of dbusmock, so that the unit is there
as soon as the name is on the bus; its parameter is the state of the unit."""

BUS_NAME = "org.freedesktop.systemd1"
MAIN_OBJ = "/org/freedesktop/systemd1"
MAIN_IFACE = "org.freedesktop.systemd1.Manager"
SYSTEM_BUS = True
UNIT = f"{MAIN_OBJ}/unit/smbd_2eservice"
UNIT_IFACE = "org.freedesktop.systemd1.Unit"


def load(mock, parameters):
    mock.AddMethod(MAIN_IFACE, "Subscribe", "", "", "")
    properties = {"Id": "smbd.service", "LoadState": "loaded", "ActiveState": parameters["state"]}
    mock.AddObject(UNIT, UNIT_IFACE, properties, [])
