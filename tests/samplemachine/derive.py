"""The inventory of a sample machine, derived from its description alone: derive.py FILE prints the records as JSON.

A second reading of what an inventory is, by other means than the program's. Where the two differ, one of them is wrong.
"""

import json
import pathlib
import re
import sys

WINDOWS = "C:\\windows"

# In the order of the documents.
MEMBERS = (
    "kind name description provider version product_version version_key service path state start_type image_missing "
    "image_time size inf original_inf inf_date class files devices_using instance_id hardware_id identity names "
    "problem_code problem sha256 image_sha256 signature signature_problem signature_kind catalog signer "
    "signer_thumbprint signed_at known").split()

# What a record is found by, by its kind.
KEYS = {"service": "service", "device": "instance_id", "package": "inf", "chipset": "name"}

START_TYPES = {
    "boot": "Boot Start",
    "system": "System Start",
    "automatic": "Automatic",
    "manual": "Manual",
    "disabled": "Disabled",
}

PROBLEMS = {
    10: "CM_PROB_FAILED_START",
    22: "CM_PROB_DISABLED",
    28: "CM_PROB_FAILED_INSTALL",
    31: "CM_PROB_FAILED_ADD",
    43: "CM_PROB_FAILED_POST_START",
}

# Key, value, name, description, provider.
CHIPSETS = (
    ("SOFTWARE\\Intel\\InfInst", "Version", "intel_chipset", "Intel chipset Driver", "Intel"),
    ("SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers", "ProductVersion", "amd_chipset", "Amd chipset Driver", "Amd"),
    ("SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver", "ProductVersion", "amd_ppd",
     "Amd EPYC SP3 PSHED Plug-in Driver", "Amd"),
)

# Platform components that have one name on every machine: by identity, with or without driver ...
INTEL_GPIO = ("105E", "1083")
INTEL_EVENT_FILTER = ("1051", "1054", "1070", "1076", "1077", "1078", "107B", "10CB", "10CC", "10F1", "10F2", "110E")
FIXED_NAMES = {
    **{f"INTC-{device}-0000-0000": "INTC-VOKTA_IALPSS2_GPIO2_MTL_0000-0000-0000-0000" for device in INTEL_GPIO},
    **{f"INTC-{device}-0000-0000": "INTC-VOKTA_HIDEVENTFILTER_0000-0000-0000-0000" for device in INTEL_EVENT_FILTER},
}
# ... and the first of each without driver.
FIXED_NAMES_WITHOUT_DRIVER = {
    "AMDI-0030-0000-0000": "AMD-VOKTA_AMDGPIO2_0000-0000-0000-0000",
    "AMDI-0020-0000-0000": "AMD-VOKTA_AMDUART_0000-0000-0000-0000",
    "AMDI-0010-0000-0000": "AMD-VOKTA_AMDI2C_0000-0000-0000-0000",
    "DRTM-0002-0000-0000": "AMD-VOKTA_AMDDRTM_0000-0000-0000-0000",
}

# What every Wine machine has of its own.
DISPLAY_ADAPTER = {
    "instance_id": "PCI\\VEN_0000&DEV_0000&SUBSYS_00000000&REV_00\\00000000",
    "description": "Wine Adapter",
    "manufacturer": "",
    "class": "Display",
    "hardware_ids": ["PCI\\VEN_0000&DEV_0000&SUBSYS_00000000&REV_00"],
}


def version_key(version):
    """`version` as a text whose bytes sort as versions do: "10.0.22621.1137" gives "c10af22621e1137"."""
    return "".join(version_key_of_component(component) for component in re.split("[. ]", version.lower()))


def version_key_of_component(component):
    if component == "":
        return "!"
    if re.fullmatch("[0-9a-f]+", component) and int(component, 16) < 1 << 63:
        digits = component.lstrip("0")
        return "abcdefghijklmnopq"[len(digits)] + digits
    return ('"' if component.encode()[0] < ord("0") else "~") + component + " "


def iso_date(date):
    """`date` is month, day and year: "5-17-2023" or "05/17/2023"."""
    month, day, year = map(int, re.split("[-/]", date))
    return f"{year:04}-{month:02}-{day:02}"


def unique(texts):
    """Each of `texts` once, whatever its case: the first of them."""
    first = {}
    for text in texts:
        first.setdefault(text.lower(), text)
    return list(first.values())


class Inf:
    """An INF file: sections of lines, each line a key, which may be None, and its fields."""

    def __init__(self, lines):
        self.sections = {}
        section = []
        for line in lines:
            line = self.without_comment(line).strip()
            header = re.fullmatch(r"\[(.*)\]", line)
            if header:
                section = self.sections.setdefault(header.group(1).strip().lower(), [])
            elif line:
                section.append(self.split(line))
        self.strings = {}
        for key, fields in self.sections.get("strings", []):
            self.strings.setdefault(key.lower(), fields[0])

    @staticmethod
    def without_comment(line):
        return re.match(r'(?:"[^"]*"|[^";])*', line).group()

    @staticmethod
    def split(line):
        key, fields = re.fullmatch(r'(?:((?:"[^"]*"|[^"=])*)=)?(.*)', line).groups()
        parts = [Inf.unquoted(part) for part in re.findall(r'(?:^|,)((?:"[^"]*"|[^",])*)', fields)]
        return (None if key is None else Inf.unquoted(key)), parts

    @staticmethod
    def unquoted(text):
        text = text.strip()
        return text[1:-1].replace('""', '"') if re.fullmatch('".*"', text) else text

    def substituted(self, text):
        return re.sub("%([^%]*)%", lambda name: self.strings.get(name.group(1).lower(), name.group()), text)

    def fields(self, section, key):
        """Fields of the first line `key` of a section; empty when there is none."""
        for found, fields in self.sections.get(section.lower(), []):
            if found is not None and self.substituted(found).lower() == key.lower():
                return [self.substituted(field) for field in fields]
        return []

    def field(self, section, key, index=0):
        return dict(enumerate(self.fields(section, key))).get(index, "")

    def listed_files(self):
        """(file, name of its disk) for every file that the package lists for any processor."""
        for processor in ("", ".amd64", ".ia64", ".x86"):
            for key, fields in self.sections.get("sourcedisksfiles" + processor, []):
                disk = self.substituted(fields[0])
                yield self.substituted(key), self.field("SourceDisksNames" + processor, disk)

    def files(self):
        return unique(file for file, _ in self.listed_files())


def is_driver(file):
    return file.lower().endswith((".sys", ".inf"))


def is_image(file):
    return file.lower().endswith(".sys")


class Machine:
    def __init__(self, description):
        self.description = description
        self.images = {self.image_place(driver["file"]).lower(): driver for driver in description["drivers"]}
        self.infs = {package["inf"].lower(): Inf(package["lines"]) for package in description["packages"]}
        self.devices = description["devices"] + [DISPLAY_ADAPTER]
        # Those of the device inventory, in the order in which Windows enumerates them.
        listed = (device for device in self.devices if device["instance_id"].upper().startswith(("PCI\\", "ACPI\\")))
        self.listed_devices = sorted(listed, key=lambda device: device["instance_id"].upper().split("\\"))
        self.named_without_driver = set()

    def records(self):
        """All records, with the members that they have, in the order of an inventory and of its members."""
        records = []
        for kind, listed in (("service", self.services()), ("device", self.device_records()),
                             ("package", self.packages()), ("chipset", self.chipsets())):
            for record in sorted(listed, key=lambda record: record[KEYS[kind]].lower().encode()):
                record["kind"] = kind
                if record.get("version"):
                    record["version_key"] = version_key(record["version"])
                known = (member for member in MEMBERS if record.get(member) not in (None, "", []))
                records.append({member: record[member] for member in known})
        return records

    # --- Services.

    @staticmethod
    def image_place(file):
        return file if ":" in file else f"{WINDOWS}\\system32\\{file}"

    @staticmethod
    def image_path(service):
        """The full path that the configuration of a service means."""
        path = service["image_path"] or f"System32\\drivers\\{service['name']}.sys"
        path = re.sub("%SystemRoot%", lambda _: WINDOWS, path, flags=re.IGNORECASE)
        path = path.removeprefix("\\??\\")
        path = re.sub(r"^\\SystemRoot\\", "", path, flags=re.IGNORECASE)
        return path if re.match("[A-Za-z]:", path) else f"{WINDOWS}\\{path}"

    def services(self):
        for service in self.description["services"]:
            path = self.image_path(service)
            record = {
                "service": service["name"],
                "path": path,
                "state": "Running" if service.get("running") else "Stopped",
                "start_type": START_TYPES[service["start"]],
            }
            image = self.images.get(path.lower())
            # A file is called what it was called when it was made, whatever the configuration calls it.
            file = (image["file"] if image else path).rsplit("\\", 1)[1]
            record["name"] = file.split(".")[0] + ".sys"
            if image:
                record |= {
                    "description": image.get("description"),
                    "provider": image.get("company"),
                    "version": image.get("file_version"),
                    "product_version": image.get("product_version"),
                    "image_time": image["created"] + "Z",
                    "size": image["size"],
                }
            else:
                record["image_missing"] = True
            yield record

    # --- Devices.

    def device_records(self):
        for device in self.listed_devices:
            identity = identity_of(device)
            names = self.device_names(device, identity)
            problem = device.get("problem_code")
            record = {
                "name": names[0] if names else identity,
                "description": device.get("friendly_name") or device["description"],
                "provider": device["manufacturer"],
                "service": device.get("service"),
                "class": device["class"],
                "instance_id": device["instance_id"],
                "hardware_id": device["hardware_ids"][0],
                "identity": identity,
                "names": names,
                "problem_code": problem,
                "problem": PROBLEMS.get(problem),
            }
            if "package" in device:
                package = device["package"]
                inf = self.infs.get(package["inf"].lower())
                record |= {
                    "provider": inf.field("Version", "Provider") if inf else package.get("provider"),
                    "version": package["version"],
                    "inf": package["inf"],
                    "inf_date": iso_date(package["date"]),
                }
            yield record

    def device_names(self, device, identity):
        """Every name under which a device is listed."""
        if identity in FIXED_NAMES:
            return [FIXED_NAMES[identity]]
        if "package" in device:
            inf = device["package"]["inf"]
            if inf.lower() not in self.infs:
                return []
            files = [file for file in self.infs[inf.lower()].files() if is_driver(file)]
            # A package without ".sys" file is listed itself, under the name under which it was delivered.
            if not any(map(is_image, files)):
                files.append(inf)
            bases = [re.sub(r"\.(inf|sys)$", "", file, flags=re.IGNORECASE) for file in files]
            return list(dict.fromkeys(f"{base}_{identity}" for base in bases))
        if identity in FIXED_NAMES_WITHOUT_DRIVER and identity not in self.named_without_driver:
            self.named_without_driver.add(identity)
            return [FIXED_NAMES_WITHOUT_DRIVER[identity]]
        return [identity + "_nodriver#"]

    # --- Packages.

    def uses(self, inf):
        """How many devices were installed from a package or are extended by it."""
        in_use = ([device.get("package", {}).get("inf", ""), *device.get("extensions", [])] for device in self.devices)
        return sum(inf.lower() in (used.lower() for used in infs) for infs in in_use)

    def packages(self):
        installed = {device["package"]["inf"].lower() for device in self.listed_devices if "package" in device}
        for published, inf in self.infs.items():
            if not published.startswith("oem") and published not in installed:
                continue
            listed = list(inf.listed_files())
            provider = inf.field("Version", "Provider")
            yield {
                # Wine answers with the published name when it is asked for the one before.
                "name": next(filter(is_image, inf.files()), published),
                "description": next((disk for file, disk in listed if is_driver(file)), "") or provider,
                "provider": provider,
                "version": inf.field("Version", "DriverVer", 1),
                "inf": published,
                "original_inf": published,
                "inf_date": iso_date(inf.field("Version", "DriverVer")),
                "class": inf.field("Version", "Class"),
                "files": inf.files(),
                "devices_using": self.uses(published),
            }

    # --- Chipset packages.

    def chipsets(self):
        texts = {(text["key"].lower(), text["value"].lower()): text["text"] for text in self.description["registry"]}
        for key, value, name, description, provider in CHIPSETS:
            version = texts.get((key.lower(), value.lower()))
            if version is not None:
                yield {"name": name, "description": description, "provider": provider, "version": version}


def identity_of(device):
    """What the first identifier of a known form says of a device; without such an identifier, the instance's name."""
    for identifier in device["hardware_ids"] + [device["instance_id"]]:
        identity = identity_in(identifier)
        if identity:
            return identity
    return device["instance_id"].split("\\")[1] + "-0000-0000-0000"


def identity_in(identifier):
    enumerator, _, rest = identifier.partition("\\")
    rest = rest.split("\\")[0]
    fields = dict(field.split("_", 1) for field in rest.upper().split("&") if "_" in field)
    vendor, device = fields.get("VEN", ""), fields.get("DEV", "")
    if enumerator.upper() == "PCI":
        if not re.fullmatch("[0-9A-F]{4} [0-9A-F]{4}", f"{vendor} {device}"):
            return None
        subsystem = re.fullmatch("([0-9A-F]{4})([0-9A-F]{4})", fields.get("SUBSYS", ""))
        subsystem_device, subsystem_vendor = subsystem.groups() if subsystem else ("0000", "0000")
        return f"{vendor}-{device}-{subsystem_vendor}-{subsystem_device}"
    if enumerator.upper() == "ACPI":
        word = re.fullmatch("([0-9A-Z]{3,4}) ?([0-9A-F]{4})", f"{vendor} {device}" if vendor else rest.upper())
        return f"{word.group(1)}-{word.group(2)}-0000-0000" if word else None
    return None


def read(path):
    """The records of the machine whose description is at `path`."""
    return Machine(json.loads(pathlib.Path(path).read_text(encoding="utf-8"))).records()


if __name__ == "__main__":
    json.dump(read(sys.argv[1]), sys.stdout, ensure_ascii=False, indent=2)
    print()
