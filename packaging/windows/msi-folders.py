#!/usr/bin/env python3
"""Reads the file list wixl-heat wrote (argument 1) and writes a fragment
(argument 2) whose component removes every folder of the installation at
uninstall, deepest first: an installer takes away only the folders it is
told to, and only once they are empty. wixl writes each of them for the
installation folder; the SQL printed sets each row's own folder."""
import sys
import xml.etree.ElementTree as ET

WIX = "{http://schemas.microsoft.com/wix/2006/wi}"
folders = []  # (depth, id)


def walk(node, depth):
    for child in node.findall(WIX + "Directory"):
        # heat's "." is the installation folder itself.
        d = depth if child.get("Name") == "." else depth + 1
        folders.append((d, child.get("Id")))
        walk(child, d)


root = ET.parse(sys.argv[1]).getroot()
for ref in root.iter(WIX + "DirectoryRef"):
    walk(ref, 0)
folders.append((0, "INSTALLDIR"))
# The installer goes through them in the order of their keys.
rows = sorted(folders, key=lambda f: -f[0])
removes = "\n".join(
    '        <RemoveFolder Id="rmdir%03d" On="uninstall"/>' % i for i in range(len(rows)))
for i, (_, ident) in enumerate(rows):
    print("UPDATE RemoveFile SET DirProperty='%s' WHERE FileKey='rmdir%03d'" % (ident, i))
with open(sys.argv[2], "w", encoding="utf-8") as f:
    f.write("""<?xml version="1.0" encoding="utf-8"?>
<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">
  <Fragment>
    <DirectoryRef Id="INSTALLDIR">
      <Component Id="Folders" Guid="B0F3C2E1-6A4D-4F8B-9C7E-5D2A1B3C4E60" Win64="yes">
%s
        <RegistryValue Root="HKLM" Key="Software\\yunqi-reports" Name="Folders"
                       Type="integer" Value="1" KeyPath="yes"/>
      </Component>
    </DirectoryRef>
  </Fragment>
</Wix>
""" % removes)
