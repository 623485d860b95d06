#!/usr/bin/env python3
"""`docs/count.py DIRECTORY`: how many members of the reference, as Doxygen's XML has it, say in a line what they are.

Private ones don't count, nor the buffer that CString keeps its text in. Fails where one says nothing.
"""

import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

members = {}
for file in Path(sys.argv[1]).glob('*.xml'):
    for compound in ElementTree.parse(file).iter('compounddef'):
        if compound.findtext('compoundname') == 'CString::Rep':
            continue
        for member in compound.iter('memberdef'):
            if member.get('prot') == 'private' or member.get('kind') == 'friend':
                continue
            says = ''.join(member.find('briefdescription').itertext()).strip()
            place = member.find('location')
            members[member.get('id')] = (bool(says), f'{place.get("file")}: {member.findtext("name")}')
silent = sorted(place for says, place in members.values() if not says)
print(f'{len(members) - len(silent)} of {len(members)} members have a line that says what they are')
print('\n'.join(silent))
sys.exit(bool(silent))
