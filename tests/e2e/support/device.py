"""The simulated device's document, as a user edits it."""

import json
import os
import pathlib

from support import paths


class Device:
    def __init__(self, path):
        self.path = pathlib.Path(path)
        self.write(paths.DEFAULT_DEVICE.read_bytes())

    def write(self, contents):
        """Replaces the whole file, as editors do."""
        new = self.path.with_name(self.path.name + ".new")
        new.write_bytes(contents)
        os.replace(new, self.path)

    def document(self):
        return json.loads(self.path.read_text())

    def get(self, call):
        return self.document()["sys"].get(call)

    def set(self, **calls):
        """Sets what the named sys_ calls answer; None removes the call from the document."""
        document = self.document()
        for call, answer in calls.items():
            if answer is None:
                document["sys"].pop(call, None)
            else:
                document["sys"][call] = answer
        self.write(json.dumps(document, indent=2).encode())

    def speak(self, language):
        """Sets the language of the user interface."""
        self.change(webui={"i18nSettings": {"language": language}})

    def change(self, **groups):
        """Sets entries of the groups of the document, as in change(msgbus={channel: value})."""
        document = self.document()
        for group, entries in groups.items():
            document.setdefault(group, {}).update(entries)
        self.write(json.dumps(document, indent=2).encode())
